// SPDX-License-Identifier: MIT
#include "tests/ui/status_notifier_panel.h"

#include "tests/support/real_desktop/wait_until.h"

#include <gio/gio.h>

#include <cstdio>
#include <cstdlib>

namespace kelvora::real {

namespace {

constexpr auto registryPath = "/StatusNotifierWatcher";
constexpr auto registryName = "org.kde.StatusNotifierWatcher";
constexpr auto registryDescription = R"(<node><interface name="org.kde.StatusNotifierWatcher">
    <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    </interface></node>)";
constexpr auto menuInterface = "com.canonical.dbusmenu";

void registerItem(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
                  const char* /*interface*/, const char* /*method*/, GVariant* arguments,
                  GDBusMethodInvocation* invocation, void* item) {
    const char* service = nullptr;
    g_variant_get(arguments, "(&s)", &service);
    *static_cast<std::string*>(item) = service;
    g_dbus_method_invocation_return_value(invocation, nullptr);
}

GVariant* isHostRegistered(GDBusConnection* /*connection*/, const char* /*sender*/,
                           const char* /*path*/, const char* /*interface*/,
                           const char* /*property*/, GError** /*error*/, void* /*item*/) {
    return g_variant_new_boolean(TRUE);
}

/// One item of a menu as text, from its properties (a{sv}).
std::string describe(GVariant* properties) {
    const char* type = "";
    const char* label = "";
    int mark = -1;
    gboolean isEnabled = TRUE;
    g_variant_lookup(properties, "type", "&s", &type);
    g_variant_lookup(properties, "label", "&s", &label);
    g_variant_lookup(properties, "toggle-state", "i", &mark);
    g_variant_lookup(properties, "enabled", "b", &isEnabled);
    if (type == std::string("separator"))
        return "-";
    std::string text = isEnabled != FALSE ? label : "(" + std::string(label) + ")";
    if (mark >= 0)
        text.insert(0, mark == 1 ? "[x] " : "[ ] ");
    GVariantIter* shortcut = nullptr;
    if (g_variant_lookup(properties, "shortcut", "aas", &shortcut) != FALSE) {
        char** keys = nullptr;
        if (g_variant_iter_next(shortcut, "^as", &keys) != FALSE) {
            char* const joined = g_strjoinv("+", keys);
            text += std::string(" ") + joined;
            g_free(joined);
            g_strfreev(keys);
        }
        g_variant_iter_free(shortcut);
    }
    return text;
}

} // namespace

StatusNotifierPanel::StatusNotifierPanel(const std::string& busAddress)
    : connection_(g_dbus_connection_new_for_address_sync(
          busAddress.c_str(),
          static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                            G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
          nullptr, nullptr, nullptr)) {
    static const GDBusInterfaceVTable registry{registerItem, isHostRegistered, nullptr, {}};
    GDBusNodeInfo* const description = g_dbus_node_info_new_for_xml(registryDescription, nullptr);
    const bool isExported =
        connection_ != nullptr &&
        g_dbus_connection_register_object(connection_, registryPath, description->interfaces[0],
                                          &registry, &item_, nullptr, nullptr) != 0;
    g_dbus_node_info_unref(description);
    if (!isExported ||
        g_bus_own_name_on_connection(connection_, registryName, G_BUS_NAME_OWNER_FLAGS_NONE,
                                     nullptr, nullptr, nullptr, nullptr) == 0) {
        std::fprintf(stderr, "the panel has no bus\n");
        std::abort();
    }
}

StatusNotifierPanel::~StatusNotifierPanel() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
}

GVariant* StatusNotifierPanel::call(const char* path, const char* interface, const char* method,
                                    GVariant* arguments) {
    GVariant* const reply =
        g_dbus_connection_call_sync(connection_, item_.c_str(), path, interface, method, arguments,
                                    nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    return reply != nullptr ? reply : g_variant_ref_sink(g_variant_new("()"));
}

GVariant* StatusNotifierPanel::property(const char* name) {
    GVariant* const reply = call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                                 g_variant_new("(ss)", "org.kde.StatusNotifierItem", name));
    GVariant* value = nullptr;
    g_variant_get(reply, "(v)", &value);
    g_variant_unref(reply);
    return value;
}

bool StatusNotifierPanel::waitForItem() {
    return waitUntil([this] {
        while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
        }
        return !item_.empty();
    });
}

std::string StatusNotifierPanel::title() {
    GVariant* const value = property("Title");
    std::string text = g_variant_get_string(value, nullptr);
    g_variant_unref(value);
    return text;
}

std::size_t StatusNotifierPanel::iconCount() {
    GVariant* const value = property("IconPixmap");
    const std::size_t count = g_variant_n_children(value);
    g_variant_unref(value);
    return count;
}

std::vector<StatusNotifierPanel::Entry> StatusNotifierPanel::entries() {
    GVariant* const path = property("Menu");
    const char* const everyProperty[] = {nullptr};
    GVariant* const reply = call(g_variant_get_string(path, nullptr), menuInterface, "GetLayout",
                                 g_variant_new("(ii^as)", 0, 1, everyProperty));
    GVariantIter* children = nullptr;
    g_variant_get(reply, "(u(i@a{sv}av))", nullptr, nullptr, nullptr, &children);
    std::vector<Entry> entries;
    GVariant* child = nullptr;
    while (g_variant_iter_loop(children, "v", &child) != FALSE) {
        int id = 0;
        GVariant* properties = nullptr;
        g_variant_get(child, "(i@a{sv}av)", &id, &properties, nullptr);
        entries.push_back({id, describe(properties)});
        g_variant_unref(properties);
    }
    g_variant_iter_free(children);
    g_variant_unref(reply);
    g_variant_unref(path);
    return entries;
}

std::vector<std::string> StatusNotifierPanel::menu() {
    std::vector<std::string> texts;
    for (const Entry& entry : entries())
        texts.push_back(entry.text);
    return texts;
}

void StatusNotifierPanel::choose(const std::string& text) {
    GVariant* const path = property("Menu");
    for (const Entry& entry : entries()) {
        if (entry.text == text)
            g_variant_unref(
                call(g_variant_get_string(path, nullptr), menuInterface, "Event",
                     g_variant_new("(isvu)", entry.id, "clicked", g_variant_new_string(""), 0U)));
    }
    g_variant_unref(path);
}

} // namespace kelvora::real
