#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>

#include <optional>

/// The metadata stream's XML (ISO 16684-1), which repeats some of the document's attributes.
namespace XmpPacket {

/// The packet with those of Title, Author, Subject and Keywords that `keys` names changed to their values in
/// `attributes`, or removed where those lack them. Everything else stays. None for a packet that can't be read.
[[nodiscard]] std::optional<QByteArray> withAttributes(const QByteArray& packet, const QStringList& keys,
                                                       const QVariantMap& attributes);

} // namespace XmpPacket
