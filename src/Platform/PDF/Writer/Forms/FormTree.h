#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <QString>

#include <functional>
#include <string>
#include <vector>

/// Looks things up in a form's tree of fields (ISO 32000-1, 12.7.3). Every climb and descent is limited, since a file
/// may nest its fields in a circle.
namespace FormTree {

/// The dictionary that holds the field which a widget shows: its own, or the nearest one above that has a name.
[[nodiscard]] QPDFObjectHandle fieldOf(QPDFObjectHandle widget);

/// The value of a key at the dictionary or the nearest one above that has it; null when none has.
[[nodiscard]] QPDFObjectHandle inherited(QPDFObjectHandle dictionary, const std::string& key);

/// The dictionary and all above it, the nearest first.
[[nodiscard]] std::vector<QPDFObjectHandle> chain(QPDFObjectHandle dictionary);

/// Calls `visit` for each field and widget that the form lists, with the full name of its field, those above first.
void forEach(QPDFObjectHandle form, const std::function<void(QPDFObjectHandle field, const QString& name)>& visit);

/// The widgets of a field: itself when it is one, or its kids that aren't fields of their own.
[[nodiscard]] std::vector<QPDFObjectHandle> widgets(QPDFObjectHandle field);

/// The name, with its slash, of the state in which a button is on; "/Yes" when neither its appearances nor its present
/// state tell one.
[[nodiscard]] std::string onState(QPDFObjectHandle button);

// Flags of the Ff key (ISO 32000-1, tables 221, 226, 228 and 230).
inline constexpr int multiline = 1 << 12;
inline constexpr int password = 1 << 13;
inline constexpr int radio = 1 << 15;
inline constexpr int pushButton = 1 << 16;
inline constexpr int combo = 1 << 17;
inline constexpr int comb = 1 << 24;
inline constexpr int radiosInUnison = 1 << 25;

} // namespace FormTree
