// SPDX-License-Identifier: MIT
// A window with one field of every kind, in GTK 3 or GTK 4.
//     fields_gtk3 entry|text|password|readonly
// The named field has the focus, and what it holds stands in the window's title.
#include "tests/applications/title_text.h"

#include <gtk/gtk.h>
#include <string>

namespace {

#if GTK_MAJOR_VERSION == 3
constexpr auto boxProperties = "<property name='border-width'>12</property>";
constexpr auto password = "<object class='GtkEntry' id='password'>"
                          "<property name='visibility'>0</property></object>";
#else
constexpr auto boxProperties = "";
constexpr auto password = "<object class='GtkPasswordEntry' id='password'/>";
#endif

std::string textView(const std::string& name, const std::string& properties) {
    return "<child><object class='GtkScrolledWindow'><property name='vexpand'>1</property><child>"
           "<object class='GtkTextView' id='" +
           name + "'><property name='wrap-mode'>word-char</property>" + properties +
           "</object></child></object></child>";
}

std::string description() {
    return std::string("<interface>"
                       "<object class='GtkTextBuffer' id='words'>"
                       "<property name='text'>ghbdtn rfr ltkf</property></object>"
                       "<object class='GtkWindow' id='window'>"
                       "<property name='default-width'>700</property>"
                       "<property name='default-height'>500</property>"
                       "<child><object class='GtkBox'>"
                       "<property name='orientation'>vertical</property>"
                       "<property name='spacing'>12</property>") +
           boxProperties + "<child><object class='GtkEntry' id='entry'/></child><child>" +
           password + "</child>" +
           textView("readonly", "<property name='editable'>0</property>"
                                "<property name='buffer'>words</property>") +
           textView("text", "") + "</object></child></object></interface>";
}

void showText(GObject* source, GtkWindow* window) {
    char* text = nullptr;
    g_object_get(source, "text", &text, nullptr);
    gtk_window_set_title(window, kelvora::applications::titleFor(text).c_str());
    g_free(text);
}

} // namespace

int main(int argc, char** argv) {
#if GTK_MAJOR_VERSION == 3
    gtk_init(&argc, &argv);
#else
    gtk_init();
#endif
    GtkBuilder* const builder = gtk_builder_new_from_string(description().c_str(), -1);
    auto* const window = GTK_WINDOW(gtk_builder_get_object(builder, "window"));
    GObject* field = gtk_builder_get_object(builder, argc > 1 ? argv[1] : "entry");
    gtk_widget_grab_focus(GTK_WIDGET(field));
    if (GTK_IS_TEXT_VIEW(field))
        field = G_OBJECT(gtk_text_view_get_buffer(GTK_TEXT_VIEW(field)));
    g_signal_connect(field, "changed", G_CALLBACK(showText), window);
    showText(field, window);
    bool isOpen = true;
    g_signal_connect(window, "destroy",
                     G_CALLBACK(+[](GtkWidget* /*window*/, bool* open) { *open = false; }),
                     &isOpen);
#if GTK_MAJOR_VERSION == 3
    gtk_widget_show_all(GTK_WIDGET(window));
#endif
    gtk_window_present(window);
    while (isOpen)
        g_main_context_iteration(nullptr, TRUE);
    return 0;
}
