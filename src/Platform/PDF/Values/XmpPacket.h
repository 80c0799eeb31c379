#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>

#include <optional>

/// The metadata stream's XML (ISO 16684-1), which repeats some of the document's attributes.
namespace XmpPacket {

/// What the packet says of Title, Author, Subject (strings) and Keywords (a list of strings); nothing of a packet that
/// can't be read.
[[nodiscard]] QVariantMap attributes(const QByteArray& packet);

/// The keys of those.
[[nodiscard]] QStringList keys();

/// The packet with those of Title, Author, Subject, Keywords and ModDate that `keys` names changed to their values in
/// `attributes`, or removed where those lack them; "Thumbnails" are pictures of pages. Everything else stays. None for
/// a packet that can't be read.
[[nodiscard]] std::optional<QByteArray> withAttributes(const QByteArray& packet, const QStringList& keys,
                                                       const QVariantMap& attributes);

} // namespace XmpPacket
