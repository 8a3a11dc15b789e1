// SPDX-License-Identifier: MIT
// A window with one field of every kind, in GTK 3.
//     fields_gtk3 entry|text|password|readonly
// The named field has the focus, and what it holds stands in the window's title.
#include "tests/applications/title_text.h"

#include <gtk/gtk.h>
#include <map>
#include <string>

namespace {

using kelvora::applications::titleFor;

constexpr int margin = 12;

GtkWidget* textView(bool isEditable) {
    GtkWidget* const view = gtk_text_view_new();
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), isEditable ? TRUE : FALSE);
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    return view;
}

GtkWidget* scrolled(GtkWidget* child) {
    GtkWidget* const window = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_container_add(GTK_CONTAINER(window), child);
    gtk_widget_set_vexpand(window, TRUE);
    return window;
}

void showTextOfBuffer(GtkTextBuffer* buffer, GtkWindow* window) {
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    char* const text = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
    gtk_window_set_title(window, titleFor(text).c_str());
    g_free(text);
}

void showTextOfEntry(GtkEntry* entry, GtkWindow* window) {
    gtk_window_set_title(window, titleFor(gtk_entry_get_text(entry)).c_str());
}

void keepTitle(GtkWidget* field, GtkWidget* window) {
    if (GTK_IS_TEXT_VIEW(field)) {
        GtkTextBuffer* const buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(field));
        g_signal_connect(buffer, "changed", G_CALLBACK(showTextOfBuffer), window);
        showTextOfBuffer(buffer, GTK_WINDOW(window));
    } else {
        g_signal_connect(field, "changed", G_CALLBACK(showTextOfEntry), window);
        showTextOfEntry(GTK_ENTRY(field), GTK_WINDOW(window));
    }
}

} // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 700, 500);

    const std::map<std::string, GtkWidget*> fields{{"entry", gtk_entry_new()},
                                                   {"text", textView(true)},
                                                   {"password", gtk_entry_new()},
                                                   {"readonly", textView(false)}};
    gtk_entry_set_visibility(GTK_ENTRY(fields.at("password")), FALSE);
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(fields.at("readonly"))),
                             "ghbdtn rfr ltkf", -1);

    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, margin);
    gtk_container_set_border_width(GTK_CONTAINER(box), margin);
    for (const auto& [name, field] : fields) {
        atk_object_set_name(gtk_widget_get_accessible(field), name.c_str());
        gtk_container_add(GTK_CONTAINER(box), GTK_IS_TEXT_VIEW(field) ? scrolled(field) : field);
    }
    gtk_container_add(GTK_CONTAINER(window), box);
    GtkWidget* const focused = fields.at(argc > 1 ? argv[1] : "entry");
    keepTitle(focused, window);
    gtk_widget_grab_focus(focused);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
    gtk_widget_show_all(window);
    gtk_main();
    return 0;
}
