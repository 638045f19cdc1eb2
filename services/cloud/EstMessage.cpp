#include "services/cloud/EstMessage.h"

#include "services/common/GLib.h"

#include <algorithm>

namespace cloud {
namespace {

using service::Variant;

constexpr const char *REQUEST = "(sqssayayay)";
constexpr const char *ANSWER = "(isxay)";

GVariant *toVariant(const std::string &bytes)
{
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
}

std::string bytesOf(GVariant *message)
{
    const Variant held(g_variant_ref_sink(message));
    return {static_cast<const char *>(g_variant_get_data(held.get())),
            g_variant_get_size(held.get())};
}

// The field, which is an array of bytes.
std::string fieldOf(GVariant *message, gsize index)
{
    const Variant array(g_variant_get_child_value(message, index));
    gsize size = 0;
    const void *data = g_variant_get_fixed_array(array.get(), &size, 1);
    return data == nullptr ? std::string() : std::string(static_cast<const char *>(data), size);
}

// What servers say may be in no encoding at all.
std::string plain(std::string text)
{
    const auto isOdd = [](char c) { return c < ' ' || c > '~'; };
    std::replace_if(text.begin(), text.end(), isOdd, '?');
    return text;
}

// Null for what is not of this type.
Variant read(const std::string &bytes, const char *type)
{
    GBytes *copy = g_bytes_new(bytes.data(), bytes.size());
    Variant message(
        g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE(type), copy, FALSE)));
    g_bytes_unref(copy);
    return g_variant_is_normal_form(message.get()) ? std::move(message) : nullptr;
}

} // namespace

std::string toBytes(const EstRequest &request)
{
    return bytesOf(g_variant_new("(sqss@ay@ay@ay)", request.server.c_str(), request.port,
                                 request.device.c_str(), request.salt.c_str(),
                                 toVariant(request.trust), toVariant(request.key),
                                 toVariant(request.former)));
}

std::string toBytes(const EstAnswer &answer)
{
    return bytesOf(g_variant_new("(isx@ay)", static_cast<gint32>(answer.outcome),
                                 plain(answer.why).c_str(), static_cast<gint64>(answer.later),
                                 toVariant(answer.identity)));
}

std::optional<EstRequest> readRequest(const std::string &bytes)
{
    const Variant message = read(bytes, REQUEST);
    if (!message)
        return std::nullopt;
    const char *server = nullptr;
    const char *device = nullptr;
    const char *salt = nullptr;
    guint16 port = 0;
    g_variant_get(message.get(), "(&sq&s&s@ay@ay@ay)", &server, &port, &device, &salt, nullptr,
                  nullptr, nullptr);
    return EstRequest{server,
                      port,
                      device,
                      salt,
                      fieldOf(message.get(), 4),
                      fieldOf(message.get(), 5),
                      fieldOf(message.get(), 6)};
}

std::optional<EstAnswer> readAnswer(const std::string &bytes)
{
    const Variant message = read(bytes, ANSWER);
    if (!message)
        return std::nullopt;
    gint32 outcome = 0;
    gint64 later = 0;
    const char *why = nullptr;
    g_variant_get(message.get(), "(i&sx@ay)", &outcome, &why, &later, nullptr);
    return EstAnswer{static_cast<EstOutcome>(outcome), why, later, fieldOf(message.get(), 3)};
}

} // namespace cloud
