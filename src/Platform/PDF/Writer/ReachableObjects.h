#pragma once

#include "ObjectStore.h"

#include <qpdf/QPDF.hh>

#include <optional>
#include <string>
#include <vector>

/// All objects that are reachable from the trailer of a file, as they are now.
class ReachableObjects {
public:
    struct Object {
        int generation = 0;
        std::string value;       ///< as QPDF writes it; of a stream its dictionary without the length
        QPDFObjectHandle stream; ///< not initialized for other objects
    };

    /// None when two generations of one number are in use, or numbers far beyond the count of the file's objects, or a
    /// stream whose content is part of the file's own structure.
    [[nodiscard]] static std::optional<ReachableObjects> from(const FileObjects& file, QPDFObjectHandle trailer);

    /// An empty value for a number that isn't reachable, and for an object that is null.
    [[nodiscard]] const Object& operator[](int number) const {
        static const Object none;
        return number > 0 && number < end() ? m_objects[std::size_t(number)] : none;
    }
    /// One more than the highest number in use.
    [[nodiscard]] int end() const { return int(m_objects.size()); }

private:
    ReachableObjects() = default;
    bool gather(const FileObjects& file, QPDFObjectHandle trailer);
    bool add(const FileObjects& file, QPDFObjGen id);

    std::vector<Object> m_objects; // by number
    std::vector<bool> m_seen;
    std::vector<QPDFObjGen> m_pending;
    int m_limit = 0;
};
