#pragma once

#include "ObjectStreams.h"

#include <cstddef>
#include <string>
#include <unordered_map>

/// Links that stay texts. They are most of the objects of a large book, and for a copy of it they are only written
/// again, which takes QPDF much longer than all the rest.
///
/// Those are plain links: packed ones with nothing but a look, a place in the same file or an address, which no
/// structure names. In QPDF the number 0 stands in their places, so that none who looks for a dictionary there takes
/// them for one, and references to them stay.
class PackedLinks {
public:
    /// A part of a text.
    struct Part {
        std::size_t at = 0;
        std::size_t size = 0;
    };
    struct Link {
        std::string text; ///< the dictionary as QPDF would write it, with references of its file
        Part target;      ///< the entry for what the link does, with the space behind it
        Part destination; ///< within that; empty when it leads out of the file

        [[nodiscard]] std::string destinationText() const { return text.substr(destination.at, destination.size); }
        /// `now` is a destination as QPDF writes it.
        void leadTo(const std::string& now);
        void leadNowhere();
    };

    PackedLinks() = default;
    /// Takes the links out of the file's streams of packed objects. To be called before others read what is packed.
    explicit PackedLinks(QPDF& pdf);

    /// Null for any other object.
    [[nodiscard]] const Link* find(QPDFObjGen id) const;
    [[nodiscard]] Link* find(QPDFObjGen id);
    [[nodiscard]] const std::unordered_map<int, Link>& all() const { return m_links; } ///< by object number
    void remove(QPDFObjGen id);
    void clear() { m_links.clear(); }

    /// What the stream held before; null for one in which there was no link.
    [[nodiscard]] const ObjectStreams::Content* original(int stream) const;

private:
    std::unordered_map<int, Link> m_links;
    std::unordered_map<int, ObjectStreams::Content> m_originals;
};
