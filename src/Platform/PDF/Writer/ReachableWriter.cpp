#include "ReachableWriter.h"

#include "CrossReferences.h"
#include "FileEncryption.h"
#include "ObjectStreams.h"
#include "PackedLinks.h"
#include "ReachableObjects.h"

#include <qpdf/Buffer.hh>

#include <QCryptographicHash>
#include <QIODevice>

#include <algorithm>
#include <functional>
#include <future>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using CrossReferences::Place;

constexpr std::size_t packedTogether = 100; // objects
constexpr int lastGeneration = 65535;
constexpr std::size_t mostMembers = 65536; // of a stream, whose indices two bytes hold

/// Hands what is written on in large pieces, and knows how much it was.
class Output {
public:
    explicit Output(QIODevice& device) : m_device(device) {}

    void write(const QByteArray& bytes) {
        m_piece += bytes;
        m_position += bytes.size();
        if (m_piece.size() >= pieceSize)
            finish();
    }
    void finish() {
        m_hash.addData(m_piece);
        m_device.write(m_piece);
        m_piece.resize(0); // keeps its memory
    }
    [[nodiscard]] qint64 position() const { return m_position; }
    /// Of all that was written before the last `finish`.
    [[nodiscard]] QByteArray fingerprint() const { return m_hash.result(); }

private:
    static constexpr qsizetype pieceSize = 1 << 20;

    QIODevice& m_device;
    QByteArray m_piece;
    qint64 m_position = 0;
    QCryptographicHash m_hash{QCryptographicHash::Md5};
};

class Writing {
public:
    Writing(const FileObjects& file, const ReachableObjects& objects, const FileEncryption* encryption,
            QIODevice& device)
        : m_pdf(file.pdf()), m_links(file.links()), m_objects(objects), m_encryption(encryption), m_output(device),
          m_lastOfFile(file.pdf().getXRefTable().rbegin()->first.getObj()), m_next(objects.end()) {
        if (m_encryption)
            m_encode = [encryption](const QByteArray& content) { return encryption->encrypted(content); };
    }

    void write(const std::vector<ObjectStreams::Stream>& streams, QPDFObjectHandle trailer,
               const std::string& version) {
        // Objects in streams need a reader of 1.5, and this encryption one that knows the extension to 1.7.
        const std::string least = m_encryption ? "1.7" : "1.5";
        m_output.write("%PDF-" + QByteArray::fromStdString(std::max({m_pdf.getPDFVersion(), version, least})) +
                       "\n%\xBF\xF7\xA2\xFE\n");
        for (const ObjectStreams::Stream& stream : streams)
            m_next = std::max(m_next, stream.number + 1);
        takeOver(streams);
        writeObjects();
        writePacked();
        writeEnd(trailer);
    }

private:
    /// For the object that is written next.
    void notePlace(int number, int generation) {
        m_places[number] = {Place::Kind::inFile, m_output.position(), generation};
    }

    void putStream(const ObjectStreams::Stream& stream, const QByteArray& object) {
        notePlace(stream.number, 0);
        m_output.write(object);
        for (int i = 0; i < int(stream.members.size()); ++i)
            m_places[stream.members[std::size_t(i)]] = {Place::Kind::inObjectStream, stream.number, i};
    }

    /// Empty for one that may not stay.
    [[nodiscard]] QByteArray unchanged(const ObjectStreams::Stream& stream) const {
        if (const ObjectStreams::Content* original = m_links ? m_links->original(stream.number) : nullptr)
            return ObjectStreams::unchanged(stream, *original, value(), m_encode);
        const std::optional<ObjectStreams::Content> content = ObjectStreams::read(m_pdf, stream);
        return content ? ObjectStreams::unchanged(stream, *content, value(), m_encode) : QByteArray();
    }

    /// Writes the streams of packed objects that stay; the others' objects are left to be packed anew.
    void takeOver(const std::vector<ObjectStreams::Stream>& streams) {
        for (const ObjectStreams::Stream& stream : streams) {
            const bool isWanted = stream.members.size() <= mostMembers &&
                                  std::all_of(stream.members.begin(), stream.members.end(), [this](int member) {
                                      return !m_objects[member].value.empty() &&
                                             !m_objects[member].stream.isInitialized() && mayBePacked(member);
                                  });
            // An object that took the number of such a stream is in the way.
            const bool isFree = m_objects[stream.number].value.empty();
            const QByteArray object = isWanted && isFree ? unchanged(stream) : QByteArray();
            if (object.isEmpty())
                m_repacked.insert(stream.members.begin(), stream.members.end());
            else
                putStream(stream, object);
        }
    }

    void writeObjects() {
        for (int number = 1; number < m_objects.end(); ++number) {
            const ReachableObjects::Object& object = m_objects[number];
            const bool isStream = object.stream.isInitialized();
            if (object.value.empty() || m_places.count(number) > 0)
                continue;
            const bool isNew = number > m_lastOfFile;
            if (!isStream && object.generation == 0 && mayBePacked(number) && (isNew || m_repacked.count(number) > 0)) {
                m_toPack.push_back(number);
                continue;
            }
            notePlace(number, object.generation);
            m_output.write(QByteArray::number(number) + ' ' + QByteArray::number(object.generation) + " obj\n");
            if (isStream)
                writeStream(object);
            else
                m_output.write(QByteArray::fromStdString(written(object.value)));
            m_output.write("\nendobj\n");
        }
    }

    void writeStream(const ReachableObjects::Object& object) {
        QPDFObjectHandle stream = object.stream;
        const auto data = stream.getRawStreamData();
        QByteArray content =
            QByteArray::fromRawData(reinterpret_cast<const char*>(data->getBuffer()), qsizetype(data->getSize()));
        if (m_encode)
            content = m_encode(content);
        m_output.write(QByteArray::fromStdString(written(object.value)).chopped(2) + "/Length " +
                       QByteArray::number(content.size()) + " >>\nstream\n");
        m_output.write(content);
        m_output.write("\nendstream");
    }

    /// Compressing takes most of the time, so two threads do it.
    void writePacked() {
        std::vector<ObjectStreams::Stream> streams;
        for (std::size_t first = 0; first < m_toPack.size(); first += packedTogether) {
            const std::size_t last = std::min(first + packedTogether, m_toPack.size());
            streams.push_back(
                {m_next++, {m_toPack.begin() + std::ptrdiff_t(first), m_toPack.begin() + std::ptrdiff_t(last)}});
        }
        std::vector<QByteArray> objects(streams.size());
        const auto packEverySecond = [&](std::size_t first) {
            for (std::size_t i = first; i < streams.size(); i += 2)
                objects[i] = ObjectStreams::packed(streams[i], value(), m_encode);
        };
        std::future<void> others = std::async(std::launch::async, packEverySecond, std::size_t(1));
        packEverySecond(0);
        others.get();
        for (std::size_t i = 0; i < streams.size(); ++i)
            putStream(streams[i], objects[i]);
    }

    void writeEnd(QPDFObjectHandle trailer) {
        if (m_encryption) {
            const int encryption = m_next++;
            notePlace(encryption, 0);
            m_output.write(QByteArray::number(encryption) + " 0 obj\n" +
                           QByteArray::fromStdString(m_encryption->dictionary().unparse()) + "\nendobj\n");
            m_pdf.replaceObject(encryption, 0, m_encryption->dictionary()); // or there would be nothing to refer to
            trailer.replaceKey("/Encrypt", m_pdf.getObject(encryption, 0));
        }
        m_output.finish();
        CrossReferences::setIds(trailer, m_output.fingerprint());
        const int number = m_next++;
        const qint64 position = m_output.position();
        m_places[number] = {Place::Kind::inFile, position, 0};
        // What isn't in use is chained from the first number on.
        int nextFree = 0;
        for (int unused = m_next - 1; unused >= 0; --unused)
            if (m_places.try_emplace(unused, Place{Place::Kind::free, nextFree, unused == 0 ? lastGeneration : 0})
                    .second)
                nextFree = unused;
        trailer.replaceKey("/Size", QPDFObjectHandle::newInteger(m_next));
        m_output.write(CrossReferences::streamObject(m_places, number, trailer));
        m_output.write("startxref\n" + QByteArray::number(position) + "\n%%EOF\n");
        m_output.finish();
    }

    /// Readers look for the catalogue of a protected file outside of the streams.
    [[nodiscard]] bool mayBePacked(int number) const { return !m_encryption || number != m_catalogue; }

    /// As it stands outside of a stream.
    [[nodiscard]] std::string written(const std::string& text) const {
        return m_encryption ? m_encryption->withStringsEncrypted(text) : text;
    }

    [[nodiscard]] std::function<const std::string&(int)> value() const {
        return [this](int number) -> const std::string& { return m_objects[number].value; };
    }

    QPDF& m_pdf;
    const PackedLinks* m_links;
    const ReachableObjects& m_objects;
    const FileEncryption* m_encryption; // null for a file without protection
    ObjectStreams::Encode m_encode;
    const int m_catalogue = m_pdf.getRoot().getObjectID();
    Output m_output;
    const int m_lastOfFile; // the highest number that the file had before
    int m_next;             // number of the next new object
    CrossReferences::Places m_places;
    std::set<int> m_repacked; // objects of streams that don't stay
    std::vector<int> m_toPack;
};

/// That AES-256 is in the file, in the words of the program that had it first.
void declareExtension(QPDFObjectHandle catalogue) {
    QPDFObjectHandle extensions = catalogue.getKey("/Extensions");
    extensions = extensions.isDictionary() ? extensions.shallowCopy() : QPDFObjectHandle::newDictionary();
    extensions.replaceKey("/ADBE", QPDFObjectHandle::parse("<< /BaseVersion /1.7 /ExtensionLevel 8 >>"));
    catalogue.replaceKey("/Extensions", extensions);
}

/// A stream may say that it isn't encrypted, or in another way.
bool hasFilterOfItsOwn(const ReachableObjects& objects) {
    for (int number = 1; number < objects.end(); ++number)
        if (objects[number].stream.isInitialized() && objects[number].value.find("/Crypt") != std::string::npos)
            return true;
    return false;
}

} // namespace

bool ReachableWriter::write(const FileObjects& file, const std::string& version, const FileEncryption* encryption,
                            QIODevice& device) {
    QPDF& pdf = file.pdf();
    if (pdf.isEncrypted() || pdf.anyWarnings())
        return false;
    const std::vector<ObjectStreams::Stream> streams = ObjectStreams::of(pdf);
    if (streams.empty())
        return false;
    if (encryption)
        declareExtension(pdf.getRoot());
    QPDFObjectHandle trailer = CrossReferences::plainTrailer(pdf);
    const std::optional<ReachableObjects> objects = ReachableObjects::from(file, trailer);
    // By now all is read, and if something was damaged it is known.
    if (!objects || pdf.anyWarnings())
        return false;
    if (encryption && hasFilterOfItsOwn(*objects))
        return false;
    Writing(file, *objects, encryption, device).write(streams, trailer, version);
    return true;
}
