// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/accessibility_bus.h"

#include <gio/gio.h>

namespace kelvora::real {

namespace {

constexpr int timeoutMilliseconds = 2000;
constexpr int deepestLevel = 24;
constexpr const char* accessibleInterface = "org.a11y.atspi.Accessible";
constexpr const char* textInterface = "org.a11y.atspi.Text";

// Bits of the two state words (AtspiStateType).
constexpr guint32 stateEditable = 1U << 7U;
constexpr guint32 stateFocused = 1U << 12U;

struct VariantDeleter {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, VariantDeleter>;

struct ObjectDeleter {
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
};
using Connection = std::unique_ptr<GDBusConnection, ObjectDeleter>;

struct Address {
    std::string owner;
    std::string path;
};

Connection connect(const std::string& address) {
    constexpr auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    Connection connection(
        g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr));
    if (connection) {
        g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    }
    return connection;
}

Variant call(GDBusConnection* connection, const Address& object, const char* interface,
             const char* method, GVariant* arguments = nullptr) {
    return Variant(g_dbus_connection_call_sync(
        connection, object.owner.c_str(), object.path.c_str(), interface, method, arguments,
        nullptr, G_DBUS_CALL_FLAGS_NONE, timeoutMilliseconds, nullptr, nullptr));
}

const Address accessibilityService{"org.a11y.Bus", "/org/a11y/bus"};
const Address registryRoot{"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};

/// The bus of its own that accessibility has; null as long as there is none.
Connection connectToAccessibility(GDBusConnection* session) {
    const Variant reply = call(session, accessibilityService, "org.a11y.Bus", "GetAddress");
    if (!reply) {
        return nullptr;
    }
    const char* address = nullptr;
    g_variant_get(reply.get(), "(&s)", &address);
    return connect(address);
}

std::optional<pid_t> processOf(GDBusConnection* connection, const std::string& owner) {
    const Variant reply =
        call(connection, {"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
             "GetConnectionUnixProcessID", g_variant_new("(s)", owner.c_str()));
    if (!reply) {
        return std::nullopt;
    }
    guint32 process = 0;
    g_variant_get(reply.get(), "(u)", &process);
    return static_cast<pid_t>(process);
}

bool isFocusedEditableText(GDBusConnection* connection, const Address& object) {
    const Variant reply = call(connection, object, accessibleInterface, "GetState");
    if (!reply) {
        return false;
    }
    const Variant words(g_variant_get_child_value(reply.get(), 0));
    guint32 low = 0;
    if (g_variant_n_children(words.get()) > 0) {
        g_variant_get_child(words.get(), 0, "u", &low);
    }
    return (low & stateFocused) != 0 && (low & stateEditable) != 0 &&
           call(connection, object, textInterface, "GetText", g_variant_new("(ii)", 0, -1)) !=
               nullptr;
}

std::optional<Address> search(GDBusConnection* connection, const Address& object, int level,
                              const auto& accepts, const auto& isTarget) {
    if (isTarget(object)) {
        return object;
    }
    if (level == deepestLevel) {
        return std::nullopt;
    }
    const Variant reply = call(connection, object, accessibleInterface, "GetChildren");
    if (!reply) {
        return std::nullopt;
    }
    const Variant children(g_variant_get_child_value(reply.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(children.get()); ++index) {
        const char* owner = nullptr;
        const char* path = nullptr;
        const Variant child(g_variant_get_child_value(children.get(), index));
        g_variant_get(child.get(), "(&s&o)", &owner, &path);
        const Address address{owner, path};
        if (level == 0 && !accepts(address)) {
            continue;
        }
        if (auto found = search(connection, address, level + 1, accepts, isTarget)) {
            return found;
        }
    }
    return std::nullopt;
}

} // namespace

bool enableAccessibility(const std::string& sessionBusAddress) {
    const Connection session = connect(sessionBusAddress);
    if (!session ||
        !call(
            session.get(), accessibilityService, "org.freedesktop.DBus.Properties", "Set",
            g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled", g_variant_new_boolean(TRUE)))) {
        return false;
    }
    // A toolkit that starts before the registry answers registers nowhere and never tries again.
    const Connection connection = connectToAccessibility(session.get());
    return connection != nullptr &&
           call(connection.get(), registryRoot, accessibleInterface, "GetChildren") != nullptr;
}

std::unique_ptr<AccessibleText> AccessibleText::find(const std::string& sessionBusAddress,
                                                     pid_t process) {
    const Connection session = connect(sessionBusAddress);
    Connection connection = session ? connectToAccessibility(session.get()) : nullptr;
    if (!connection) {
        return nullptr;
    }
    const auto found = search(
        connection.get(), registryRoot, 0,
        [&](const Address& application) {
            return processOf(connection.get(), application.owner) == process;
        },
        [&](const Address& object) { return isFocusedEditableText(connection.get(), object); });
    if (!found) {
        return nullptr;
    }
    std::unique_ptr<AccessibleText> result(new AccessibleText);
    result->connection_ = connection.release();
    result->owner_ = found->owner;
    result->path_ = found->path;
    return result;
}

AccessibleText::~AccessibleText() {
    g_object_unref(connection_);
}

std::optional<std::string> AccessibleText::text() const {
    const Variant reply =
        call(connection_, {owner_, path_}, textInterface, "GetText", g_variant_new("(ii)", 0, -1));
    if (!reply) {
        return std::nullopt;
    }
    const char* text = nullptr;
    g_variant_get(reply.get(), "(&s)", &text);
    return text;
}

} // namespace kelvora::real
