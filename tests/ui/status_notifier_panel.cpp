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

/// One item of a menu as text, from its properties.
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
        const char separators[] = {' ', '+'};
        GVariantIter* keys = nullptr;
        while (g_variant_iter_loop(shortcut, "as", &keys) != FALSE) {
            const char* key = nullptr;
            for (int index = 0; g_variant_iter_next(keys, "&s", &key) != FALSE; index = 1)
                text += separators[index] + std::string(key);
        }
        g_variant_iter_free(shortcut);
    }
    return text;
}

} // namespace

void StatusNotifierPanel::Unref::operator()(GVariant* variant) const {
    g_variant_unref(variant);
}

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

StatusNotifierPanel::Variant StatusNotifierPanel::call(const char* path, const char* interface,
                                                       const char* method, GVariant* arguments) {
    return Variant(g_dbus_connection_call_sync(connection_, item_.c_str(), path, interface, method,
                                               arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
                                               nullptr, nullptr));
}

StatusNotifierPanel::Variant StatusNotifierPanel::property(const char* name) {
    const Variant reply = call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                               g_variant_new("(ss)", "org.kde.StatusNotifierItem", name));
    GVariant* value = nullptr;
    g_variant_get(reply.get(), "(v)", &value);
    return Variant(value);
}

StatusNotifierPanel::Variant StatusNotifierPanel::callMenu(const char* method,
                                                           GVariant* arguments) {
    const Variant path = property("Menu");
    return call(g_variant_get_string(path.get(), nullptr), "com.canonical.dbusmenu", method,
                arguments);
}

bool StatusNotifierPanel::waitForItem() {
    return waitUntil([this] {
        while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
        }
        return !item_.empty();
    });
}

std::string StatusNotifierPanel::title() {
    return g_variant_get_string(property("Title").get(), nullptr);
}

std::size_t StatusNotifierPanel::iconCount() {
    return g_variant_n_children(property("IconPixmap").get());
}

std::vector<StatusNotifierPanel::Entry> StatusNotifierPanel::entries() {
    const char* const everyProperty[] = {nullptr};
    const Variant reply = callMenu("GetLayout", g_variant_new("(ii^as)", 0, 1, everyProperty));
    GVariantIter* children = nullptr;
    g_variant_get(reply.get(), "(u(i@a{sv}av))", nullptr, nullptr, nullptr, &children);
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
    return entries;
}

std::vector<std::string> StatusNotifierPanel::menu() {
    std::vector<std::string> texts;
    for (const Entry& entry : entries())
        texts.push_back(entry.text);
    return texts;
}

void StatusNotifierPanel::choose(const std::string& text) {
    for (const Entry& entry : entries())
        if (entry.text == text)
            static_cast<void>(callMenu("Event", g_variant_new("(isvu)", entry.id, "clicked",
                                                              g_variant_new_string(""), 0U)));
}

} // namespace kelvora::real
