#pragma once

#include "ObjectStore.h"

#include <string>

class FileEncryption;
class QIODevice;

/// Writes a file anew of all that is reachable from its trailer, and of nothing else. Objects keep their numbers, and
/// streams of packed objects of which all are reachable and as they were are taken over as they stand, which is most of
/// the time that `QPDFWriter` needs for a large file.
namespace ReachableWriter {

/// False, with nothing written, for a file that isn't of that kind: one that is protected or was repaired, that packs
/// no objects, or that uses its numbers in an odd way. The device's errors are for the caller to notice. Throws
/// `std::exception`. The file says that it needs a reader of `version`, or of a later one. With `encryption`, which may
/// be null, it is protected.
[[nodiscard]] bool write(const FileObjects& objects, const std::string& version, const FileEncryption* encryption,
                         QIODevice& device);

} // namespace ReachableWriter
