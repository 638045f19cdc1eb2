#include "services/network/Record.h"

#include <tuple>

namespace network {
namespace {

constexpr const char *TYPE = "(ssssssssbbbbbb)";

auto fieldsOf(const Record &record)
{
    return std::tie(record.device, record.kind, record.mac, record.address, record.mask,
                    record.gateway, record.preferredDns, record.alternateDns, record.isPresent,
                    record.isOn, record.isUp, record.isLinked, record.usesDhcp, record.isNormal);
}

} // namespace

bool operator==(const Record &one, const Record &other)
{
    return fieldsOf(one) == fieldsOf(other);
}

GVariant *toVariant(const Record &record)
{
    return g_variant_new(TYPE, asText(record.device).c_str(), record.kind.c_str(),
                         asText(record.mac).c_str(), record.address.c_str(), record.mask.c_str(),
                         record.gateway.c_str(), record.preferredDns.c_str(),
                         record.alternateDns.c_str(), gboolean{record.isPresent},
                         gboolean{record.isOn}, gboolean{record.isUp}, gboolean{record.isLinked},
                         gboolean{record.usesDhcp}, gboolean{record.isNormal});
}

GVariant *toVariant(const std::vector<Record> &records)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(ssssssssbbbbbb)"));
    for (const Record &record : records)
        g_variant_builder_add_value(&builder, toVariant(record));
    return g_variant_builder_end(&builder);
}

std::string asText(const std::string &text)
{
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), g_free);
    return valid.get();
}

} // namespace network
