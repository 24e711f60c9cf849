#include "clsid3v1tag.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 kTagSize = 128;

// The genre names as the tag's readers of this kind of file know them,
// with their spellings ("Psychadelic", "Bebob", and "Fusion" at both 30 and 84).
const char kGenreText[] =
    "Blues|Classic Rock|Country|Dance|Disco|Funk|Grunge|Hip-Hop|Jazz|Metal|New Age|Oldies|Other|Pop|R&B|"
    "Rap|Reggae|Rock|Techno|Industrial|Alternative|Ska|Death Metal|Pranks|Soundtrack|Euro-Techno|Ambient|"
    "Trip-Hop|Vocal|Jazz+Funk|Fusion|Trance|Classical|Instrumental|Acid|House|Game|Sound Clip|Gospel|Noise|"
    "AlternRock|Bass|Soul|Punk|Space|Meditative|Instrumental Pop|Instrumental Rock|Ethnic|Gothic|Darkwave|"
    "Techno-Industrial|Electronic|Pop-Folk|Eurodance|Dream|Southern Rock|Comedy|Cult|Gangsta|Top 40|"
    "Christian Rap|Pop/Funk|Jungle|Native American|Cabaret|New Wave|Psychadelic|Rave|Showtunes|Trailer|"
    "Lo-Fi|Tribal|Acid Punk|Acid Jazz|Polka|Retro|Musical|Rock & Roll|Hard Rock|Folk|Folk-Rock|"
    "National Folk|Swing|Fusion|Bebob|Latin|Revival|Celtic|Bluegrass|Avantgarde|Gothic Rock|"
    "Progressive Rock|Psychadelic Rock|Symphonic Rock|Slow Rock|Big Band|Chorus|Easy Listening|Acoustic|"
    "Humour|Speech|Chanson|Opera|Chamber Music|Sonata|Symphony|Booty Bass|Primus|Porn Groove|Satire|"
    "Slow Jam|Club|Tango|Samba|Folklore|Ballad|Power Ballad|Rhythmic Soul|Freestyle|Duet|Punk Rock|"
    "Drum Solo|A capella|Euro-House|Dance Hall|Goa|Drum & Bass|Club-House|Hardcore|Terror|Indie|BritPop|"
    "Negerpunk|Polsk Punk|Beat|Christian Gangsta Rap|Heavy Metal|Black Metal|Crossover|"
    "Contemporary Christian|Christian Rock|Merengue|Salsa|Thrash Metal|Anime|JPop|Synthpop";

// One text field of the tag, cut at its first zero byte.
QString textField(const QByteArray& tag, int offset, int length) {
    QByteArray bytes = tag.mid(offset, length);
    const int zero = bytes.indexOf('\0');
    if (zero >= 0)
        bytes.truncate(zero);
    return QString::fromLatin1(bytes);
}

// A field written to its fixed length: cut when longer, padded with zeros.
QByteArray fixed(const QString& text, int length) {
    QByteArray bytes = text.toLatin1().left(length);
    bytes.append(QByteArray(length - bytes.size(), '\0'));
    return bytes;
}

// True when the file's last 128 bytes begin with the marker.
bool hasTag(QFile& f) {
    const qint64 size = f.size();
    if (size < kTagSize || !f.seek(size - kTagSize))
        return false;
    return f.read(3) == QByteArrayLiteral("TAG");
}

bool openExisting(QFile& f, QIODevice::OpenMode mode) {
    const QFileInfo info(f.fileName());
    return !f.fileName().isEmpty() && info.isFile() && f.open(mode);
}

} // namespace

clsID3v1Tag::clsID3v1Tag() {
    clearFields();
}

const QStringList& clsID3v1Tag::Genres() {
    static const QStringList genres = QString::fromLatin1(kGenreText).split(QLatin1Char('|'));
    return genres;
}

QString clsID3v1Tag::GenreString() const {
    if (Genre == kNoGenre)
        return {};
    if (Genre < Genres().size())
        return Genres().at(Genre);
    return QStringLiteral("Unknown");
}

void clsID3v1Tag::setGenreString(const QString& name) {
    const qsizetype at = Genres().indexOf(name);
    Genre = at < 0 ? kNoGenre : quint8(at);
}

void clsID3v1Tag::clearFields() {
    ID.clear();
    Title.clear();
    Artist.clear();
    Album.clear();
    Year.clear();
    Comment.clear();
    Track = 0;
    Genre = kNoGenre;
}

bool clsID3v1Tag::finish(const QString& operation, qint32 number, const QString& what) {
    m_outcome = KvError(number, operation + QStringLiteral("Error: ") + what,
                        QStringLiteral("clsID3v1Tag->") + operation + QStringLiteral("Tag()"));
    return number == kSuccess;
}

bool clsID3v1Tag::ReadTag(float* version) {
    const QString op = QStringLiteral("Read");
    clearFields();
    QFile f(FileName);
    if (!openExisting(f, QIODevice::ReadOnly))
        return finish(op, kInvalidFile, QStringLiteral("Invalid File"));
    if (!hasTag(f))
        return finish(op, kNoTag, QStringLiteral("File has no Tag"));
    if (!f.seek(f.size() - kTagSize))
        return finish(op, kUnknownError, QStringLiteral("Unknown Error"));
    const QByteArray tag = f.read(kTagSize);
    f.close();
    if (tag.size() != kTagSize)
        return finish(op, kUnknownError, QStringLiteral("Unknown Error"));

    ID = textField(tag, 0, 3);
    Title = textField(tag, 3, 30);
    Artist = textField(tag, 33, 30);
    Album = textField(tag, 63, 30);
    Year = textField(tag, 93, 4);
    // A zero in the comment's second-to-last byte marks 1.1: the last one is the track.
    const bool v11 = tag.at(125) == '\0';
    Comment = textField(tag, 97, v11 ? 28 : 30);
    Track = v11 ? quint8(tag.at(126)) : 0;
    Genre = quint8(tag.at(127));
    if (version)
        *version = v11 ? 1.1f : 1.0f;
    return finish(op, kSuccess, QStringLiteral("Success"));
}

bool clsID3v1Tag::WriteTag() {
    const QString op = QStringLiteral("Write");
    QFile f(FileName);
    if (!openExisting(f, QIODevice::ReadWrite))
        return finish(op, kInvalidFile, QStringLiteral("Invalid File"));
    const qint64 at = hasTag(f) ? f.size() - kTagSize : f.size();

    QByteArray tag = QByteArrayLiteral("TAG");
    tag += fixed(Title, 30);
    tag += fixed(Artist, 30);
    tag += fixed(Album, 30);
    tag += fixed(Year, 4);
    if (Track > 0) {
        tag += fixed(Comment, 28);
        tag += '\0';
        tag += char(Track);
    } else {
        tag += fixed(Comment, 30);
    }
    tag += char(Genre);

    if (!f.seek(at) || f.write(tag) != kTagSize || !f.flush())
        return finish(op, kUnknownError, QStringLiteral("Unknown Error"));
    f.close();
    return finish(op, kSuccess, QStringLiteral("Success"));
}

bool clsID3v1Tag::RemoveTag() {
    const QString op = QStringLiteral("Remove");
    QFile f(FileName);
    if (!openExisting(f, QIODevice::ReadWrite))
        return finish(op, kInvalidFile, QStringLiteral("Invalid File"));
    if (!hasTag(f))
        return finish(op, kNoTag, QStringLiteral("File has no Tag"));
    if (!f.resize(f.size() - kTagSize))
        return finish(op, kUnknownError, QStringLiteral("Unknown Error"));
    f.close();
    return finish(op, kSuccess, QStringLiteral("Success"));
}
