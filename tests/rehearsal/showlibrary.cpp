#include "showlibrary.h"

#include "playbackmedia.h"

#include <QProcess>
#include <QRegularExpression>

namespace {

const QString kDiscSeries = QStringLiteral("Disc Series");
const QString kArtistTitle = QStringLiteral("Artist Title");
const QString kNumbered = QStringLiteral("Numbered");

constexpr double kSungSeconds = 12.0;   // long enough for a pause, a freeze and a restart
constexpr double kFillerGraphics = 2.0; // the picture is painted in the first second anyway

const QColor kFillerPicture(255, 136, 0);

const char* const kArtists[] = {"Ada Stone",   "The Lowlands",   "Mika Vale",  "Orbit Club",
                                "Jonah Reyes", "The Pale Kings", "Lena Fox",   "Static Hearts",
                                "Ivo Marsh",   "The Wednesdays", "Nora Quill", "Blue Parade",
                                "Theo Lark",   "Sable Moon",     "Kit Harper", "The Foxgloves",
                                "Remy Cole",   "Glass Tigers",   "Vera Lux",   "Hollis Park"};
// 17 and 20 words: the pair (i mod 17, i mod 20) differs for every i below 340,
// so every filler title is another.
const char* const kAdjectives[] = {"Golden",  "Silver",   "Broken", "Electric", "Quiet",   "Wild",
                                   "Lonely",  "Midnight", "Summer", "Winter",   "Crimson", "Hollow",
                                   "Burning", "Distant",  "Sleepy", "Northern", "Restless"};
const char* const kNouns[] = {"Dreams",   "Highway",   "Heart",   "River",   "Skyline", "Garden", "Echoes",
                              "Mirror",   "Station",   "Letters", "Thunder", "Horizon", "Island", "Shadows",
                              "Carousel", "Satellite", "Meadow",  "Avenue",  "Fire",    "Canyon"};
// A few fillers share a word with a sung song, so that its search lists more than one row.
const char* const kHarbourTitles[] = {"Harbour Lights", "Silent Harbour", "Harbour Road"};

QString two(int n) {
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}
QString three(int n) {
    return QStringLiteral("%1").arg(n, 3, 10, QLatin1Char('0'));
}

LibrarySong song(LibrarySong::Kind kind, const QString& folder, const QString& file, const QString& artist,
                 const QString& title, const QString& disc, const QString& trackNo, const QColor& picture,
                 double seconds) {
    LibrarySong s;
    s.kind = kind;
    s.folder = folder;
    s.file = file;
    s.artist = artist;
    s.title = title;
    s.disc = disc;
    s.trackNo = trackNo;
    s.picture = picture;
    s.seconds = seconds;
    return s;
}

QByteArray cdgPacket(int instruction, const QList<int>& data) {
    QByteArray p(24, '\0');
    p[0] = 0x09; // a CD+G command
    p[1] = char(instruction);
    for (int i = 0; i < data.size() && i < 16; ++i)
        p[4 + i] = char(data[i] & 0x3F);
    return p;
}

// Two bytes of a colour table entry: 4 bits each of red, green and blue.
QList<int> cdgColour(const QColor& c) {
    const int r = c.red() >> 4, g = c.green() >> 4, b = c.blue() >> 4;
    return {(r << 2) | (g >> 2), ((g & 3) << 4) | b};
}

} // namespace

QByteArray cdgPicture(double seconds, const QColor& background) {
    enum { Black, Background, White, Navy };
    QList<int> table;
    for (const QColor& c : {QColor(Qt::black), background, QColor(Qt::white), QColor(0, 0, 136)})
        table += cdgColour(c);
    QByteArray out = cdgPacket(30, table); // load the colour table (entries 0 to 7)
    out += cdgPacket(1, {Background, 0});  // memory preset: the whole screen
    out += cdgPacket(2, {Navy});           // border preset
    for (int row = 7; row <= 10; ++row) {  // a band of white and navy tiles
        for (int column = 1; column <= 48; ++column) {
            QList<int> tile = {White, Navy, row, column};
            for (int line = 0; line < 12; ++line)
                tile << ((line + column) % 2 ? 0x2A : 0x15);
            out += cdgPacket(6, tile);
        }
    }
    const qsizetype packets = qsizetype(seconds * 300);
    if (out.size() < packets * 24)
        out += QByteArray(packets * 24 - out.size(), '\0');
    return out;
}

QByteArray withId3v1(const QByteArray& mp3, const QString& artist, const QString& title) {
    auto field = [](const QString& text, int width) {
        QByteArray b = text.toLatin1().left(width);
        return b + QByteArray(width - b.size(), '\0');
    };
    return mp3 + "TAG" + field(title, 30) + field(artist, 30) + field(QString(), 30) + field(QString(), 4) +
           field(QString(), 30) + QByteArray(1, char(255));
}

const LibrarySong& ShowLibrary::neonHarbour() {
    static const LibrarySong s = song(
        LibrarySong::LockedZip, kDiscSeries, QStringLiteral("KVS017-07 - Marla Quist - Neon Harbour.zip"),
        QStringLiteral("Marla Quist"), QStringLiteral("Neon Harbour"), QStringLiteral("KVS017"),
        QStringLiteral("07"), QColor(255, 255, 0), kSungSeconds);
    return s;
}

const LibrarySong& ShowLibrary::paperLanterns() {
    static const LibrarySong s =
        song(LibrarySong::Pair, kNumbered, QStringLiteral("055 - The Velvet Owls - Paper Lanterns.mp3"),
             QStringLiteral("The Velvet Owls"), QStringLiteral("Paper Lanterns"), QString(),
             QStringLiteral("055"), QColor(0, 255, 255), kSungSeconds);
    return s;
}

const LibrarySong& ShowLibrary::copperRain() {
    static const LibrarySong s =
        song(LibrarySong::Zip, kNumbered, QStringLiteral("042 - Juno Blake - Copper Rain.zip"),
             QStringLiteral("Juno Blake"), QStringLiteral("Copper Rain"), QString(), QStringLiteral("042"),
             QColor(255, 0, 255), kSungSeconds);
    return s;
}

const LibrarySong& ShowLibrary::cafeLights() {
    static const LibrarySong s =
        song(LibrarySong::Pair, kArtistTitle, QStringLiteral("Renée Fontaine - Café Lights.mp3"),
             QStringLiteral("Renée Fontaine"), QStringLiteral("Café Lights"), QString(), QString(),
             kFillerPicture, kFillerGraphics);
    return s;
}

const LibrarySong& ShowLibrary::taggedTake() {
    // The file's name says little; its tag says who and what.
    static const LibrarySong s =
        song(LibrarySong::Tagged, kArtistTitle, QStringLiteral("Unlabelled Take 3.mp3"), QString(),
             QStringLiteral("Unlabelled Take 3"), QString(), QString(), QColor(), kSungSeconds);
    return s;
}

void ShowLibrary::plan() {
    m_folders = {{kDiscSeries, QStringLiteral("Disk-Track - Artist - Title"), false},
                 {kArtistTitle, QStringLiteral("Artist - Title"), true},
                 {kNumbered, QStringLiteral("No - Artist - Title"), false}};
    m_songs.clear();
    int filler = 0;
    auto nextFiller = [&](QString* artist, QString* title) {
        *artist = QString::fromLatin1(kArtists[filler % 20]);
        *title = QString::fromLatin1(kAdjectives[filler % 17]) + QLatin1Char(' ') +
                 QString::fromLatin1(kNouns[filler % 20]);
        ++filler;
    };
    QString artist, title;

    // Disc series: 89 zips on six discs, and the locked one.
    for (int i = 0; i < 89; ++i) {
        nextFiller(&artist, &title);
        if (i < 3)
            title = QString::fromLatin1(kHarbourTitles[i]);
        const QString disc = QStringLiteral("KVS") + three(1 + i / 15);
        const QString track = two(1 + i % 15);
        m_songs << song(LibrarySong::Zip, kDiscSeries,
                        disc + QLatin1Char('-') + track + QStringLiteral(" - ") + artist +
                            QStringLiteral(" - ") + title + QStringLiteral(".zip"),
                        artist, title, disc, track, kFillerPicture, kFillerGraphics);
    }
    m_songs << neonHarbour();

    // Artist - Title: 70 bare pairs and the tagged mp3; the kamikaze folder.
    for (int i = 0; i < 70; ++i) {
        nextFiller(&artist, &title);
        m_songs << song(LibrarySong::Pair, kArtistTitle,
                        artist + QStringLiteral(" - ") + title + QStringLiteral(".mp3"), artist, title,
                        QString(), QString(), kFillerPicture, kFillerGraphics);
    }
    m_songs << taggedTake() << cafeLights();

    // Numbered: zips, the two sung songs and a video, 39 in all.
    m_songs << copperRain() << paperLanterns();
    m_songs << song(LibrarySong::Video, kNumbered, QStringLiteral("017 - Pixel Parade - Test Pattern.mp4"),
                    QStringLiteral("Pixel Parade"), QStringLiteral("Test Pattern.mp4"), QString(),
                    QStringLiteral("017"), QColor(), 2.0);
    for (int no = 1; songsIn(kNumbered) < 39; ++no) {
        if (no == 17 || no == 42 || no == 55)
            continue;
        nextFiller(&artist, &title);
        m_songs << song(LibrarySong::Zip, kNumbered,
                        three(no) + QStringLiteral(" - ") + artist + QStringLiteral(" - ") + title +
                            QStringLiteral(".zip"),
                        artist, title, QString(), three(no), kFillerPicture, kFillerGraphics);
    }
}

int ShowLibrary::songsIn(const QString& folder) const {
    return int(std::count_if(m_songs.begin(), m_songs.end(),
                             [&](const LibrarySong& s) { return s.folder == folder; }));
}

bool ShowLibrary::make(const QString& root, QString* error) {
    m_root = root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/');
    plan();
    // The video is encoded while the mp3 is.
    const QString clip = m_root + QStringLiteral("clip.mp4");
    QDir().mkpath(m_root);
    QProcess videoEncoder;
    videoEncoder.start(
        QStringLiteral("mpv"),
        {QStringLiteral("--no-config"), QStringLiteral("av://lavfi:testsrc=duration=2:size=160x120:rate=10"),
         QStringLiteral("--o=") + clip, QStringLiteral("--of=mp4"), QStringLiteral("--ovc=mpeg4")});
    const QString mp3 = m_root + QStringLiteral("tone.mp3");
    if (!playbackmedia::makeMp3(mp3, kSungSeconds)) {
        *error = QStringLiteral("no mp3 could be encoded");
        return false;
    }
    m_audio = playbackmedia::readFile(mp3);
    const bool videoMade = videoEncoder.waitForFinished(60000) && videoEncoder.exitCode() == 0;
    const QByteArray video = videoMade ? playbackmedia::readFile(clip) : QByteArray();
    QFile::remove(mp3);
    QFile::remove(clip);
    if (video.isEmpty())
        m_songs.removeIf([](const LibrarySong& s) { return s.kind == LibrarySong::Video; });

    for (const LibrarySong& s : std::as_const(m_songs))
        if (!writeSong(s, video, error))
            return false;
    return true;
}

bool ShowLibrary::writeSong(const LibrarySong& s, const QByteArray& video, QString* error) {
    const QString target = path(s);
    const QString stem = QFileInfo(s.file).completeBaseName();
    bool ok = false;
    switch (s.kind) {
    case LibrarySong::Zip:
    case LibrarySong::LockedZip: {
        // Every third archive names its entries otherwise than itself, with an
        // upper-case extension: the song still lands under the archive's name.
        const bool odd = s.trackNo.toInt() % 3 == 0;
        const QString entry = odd ? QStringLiteral("Track") : stem;
        const bool locked = s.kind == LibrarySong::LockedZip;
        ok = playbackmedia::makeZip(target,
                                    {{entry + QStringLiteral(".mp3"), m_audio, locked},
                                     {entry + (odd ? QStringLiteral(".CDG") : QStringLiteral(".cdg")),
                                      cdgPicture(s.seconds, s.picture), locked}},
                                    locked ? archivePassword() : QString());
        break;
    }
    case LibrarySong::Pair:
        ok = playbackmedia::writeFile(target, m_audio) &&
             playbackmedia::writeFile(folderPath(s.folder) + stem + QStringLiteral(".cdg"),
                                      cdgPicture(s.seconds, s.picture));
        break;
    case LibrarySong::Tagged:
        ok = playbackmedia::writeFile(target, withId3v1(m_audio, taggedArtist(), taggedTitle()));
        break;
    case LibrarySong::Video:
        ok = playbackmedia::writeFile(target, video);
        break;
    }
    if (!ok)
        *error = QStringLiteral("could not write ") + target;
    return ok;
}

QList<LibrarySong> ShowLibrary::matching(const QStringList& words) const {
    QList<LibrarySong> found;
    for (const LibrarySong& s : m_songs) {
        const bool all = std::all_of(words.begin(), words.end(), [&](const QString& w) {
            return s.file.contains(w, Qt::CaseInsensitive);
        });
        if (all)
            found << s;
    }
    return found;
}

QList<LibrarySong> ShowLibrary::kamikazeSongs() const {
    QList<LibrarySong> found;
    for (const LibraryFolder& f : m_folders)
        if (f.kamikaze)
            for (const LibrarySong& s : m_songs)
                if (s.folder == f.name)
                    found << s;
    return found;
}
