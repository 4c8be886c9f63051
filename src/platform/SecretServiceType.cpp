#include "platform/SecretServiceType.h"

#include <libsecret/secret.h>

namespace nimbrel {

namespace {

// SecretService's constructor overwrites these properties; its base's leaves them.
void takeConstructorOfProxies(gpointer ownClass, gpointer /*data*/)
{
    gpointer proxyClass = g_type_class_peek(G_TYPE_DBUS_PROXY);
    static_cast<GObjectClass *>(ownClass)->constructor =
        static_cast<GObjectClass *>(proxyClass)->constructor;
}

} // namespace

GType secretServiceType()
{
    static const GType type = g_type_register_static_simple(
        SECRET_TYPE_SERVICE, "NimbrelSecretService", sizeof(SecretServiceClass),
        takeConstructorOfProxies, sizeof(SecretService), nullptr, G_TYPE_FLAG_NONE);
    return type;
}

} // namespace nimbrel
