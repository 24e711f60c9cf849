#include "namecut.h"

#include "core/kverror.h"
#include "importtext.h"

#include <QStringView>
#include <QVarLengthArray>

#include <algorithm>
#include <optional>
#include <span>

namespace {

// Errors of the cut are reported as the import's own.
const QString kSource = QStringLiteral("AddToImportDatabase");

// A piece or sub-piece that the convention reads and the name does not have.
struct MissingPiece {};

enum class Field { Artist, Track, Disc, TrackNo };

// One statement of a convention: set a field from a piece, from a sub-piece,
// from two sub-pieces joined by "-", or cut a piece into sub-pieces at "-".
struct Op {
    enum Kind { Piece, Sub, SubPair, Split } kind;
    Field field;
    int a;
    int b;
};

constexpr Op piece(Field f, int i) {
    return {Op::Piece, f, i, 0};
}
constexpr Op sub(Field f, int i) {
    return {Op::Sub, f, i, 0};
}
constexpr Op subPair(Field f, int i, int j) {
    return {Op::SubPair, f, i, j};
}
constexpr Op split(int i) {
    return {Op::Split, Field::Artist, i, 0};
}

// How many pieces a name must have for the convention's statements to run,
// and the statements in their order (the order decides what a name that
// fails half-way still gets).
struct Rule {
    int pieces;
    bool exact;
    std::array<Op, 5> ops;
    int opCount;
    // Which title a name gets when its piece count does not fit.
    bool fallbackToFileName;
};

constexpr Field A = Field::Artist;
constexpr Field T = Field::Track;
constexpr Field D = Field::Disc;
constexpr Field N = Field::TrackNo;

// Indexed by convention number; number 4 (All In One) has no rule.
constexpr std::array<Rule, 13> kRules = {{
    /* 0 */ {2, false, {piece(A, 1), piece(T, 0)}, 2, true},
    /* 1 */ {2, false, {piece(A, 0), piece(T, 1)}, 2, false},
    /* 2 */ {3, true, {piece(A, 1), piece(T, 2), split(0), sub(D, 0), sub(N, 1)}, 5, true},
    /* 3 */ {3, true, {piece(A, 2), piece(T, 1), split(0), sub(D, 0), sub(N, 1)}, 5, false},
    /* 4 */ {0, false, {}, 0, false},
    /* 5 */ {3, true, {split(2), piece(A, 1), piece(T, 0), sub(D, 0), sub(N, 1)}, 5, false},
    /* 6 */ {3, true, {split(2), piece(A, 0), piece(T, 1), sub(D, 0), sub(N, 1)}, 5, false},
    /* 7 */ {3, true, {piece(A, 2), piece(T, 1), split(0), subPair(D, 0, 1), sub(N, 2)}, 5, false},
    /* 8 */ {3, true, {piece(A, 1), piece(T, 2), split(0), subPair(D, 0, 1), sub(N, 2)}, 5, false},
    /* 9 */ {3, true, {piece(A, 1), piece(T, 2), split(0), sub(N, 0)}, 4, false},
    /* 10 */ {3, true, {piece(A, 2), piece(T, 1), split(0), sub(N, 0)}, 4, false},
    /* 11 */ {3, false, {piece(A, 2), piece(T, 3), piece(D, 1)}, 3, false},
    /* 12 */ {3, true, {piece(A, 2), piece(T, 1), piece(D, 0)}, 3, false},
}};

constexpr int kAllInOne = 4;

// The text less its last four characters: the extension of most song files.
template <class View> View withoutExtension(View name) {
    if (name.size() < 4)
        throw KvError(5, QStringLiteral("Invalid procedure call or argument"), kSource);
    return name.chopped(4);
}

// A name's pieces, as views into it: a name has few.
template <class View> using Pieces = QVarLengthArray<View, 8>;

// Cuts `text` at every `separator`, empty pieces kept (as QStringView::split
// does, into a list that needs no heap for a name).
template <class View> void cutAt(View text, View separator, Pieces<View>& out) {
    qsizetype from = 0;
    for (qsizetype at; (at = text.indexOf(separator, from)) >= 0; from = at + separator.size())
        out.push_back(text.sliced(from, at - from));
    out.push_back(text.sliced(from));
}

// A name is cut as text (QStringView), or, when it is all ASCII, as its own
// bytes (QByteArrayView), which spares the text's making and its encoding
// back into UTF-8: each character is then one byte.
template <class View> struct Text;

template <> struct Text<QStringView> {
    using Owned = QString;
    static constexpr QStringView kPieceCut = u" - ";
    static constexpr QStringView kSubCut = u"-";
    static QByteArray utf8(QStringView v) { return v.toUtf8(); }
    static QByteArray clean(QStringView v) { return CleanNamePartUtf8(v); }
    static QString text(QStringView v) { return v.toString(); }
    static QString owned(QStringView v) { return v.toString(); }
    static bool hasUnderscore(QStringView v) { return v.contains(QLatin1Char('_')); }
    static QString blanksForUnderscores(QStringView v) {
        return owned(v).replace(QLatin1Char('_'), QLatin1Char(' '));
    }
};

template <> struct Text<QByteArrayView> {
    using Owned = QByteArray;
    static constexpr QByteArrayView kPieceCut = " - ";
    static constexpr QByteArrayView kSubCut = "-";
    // ASCII is UTF-8 as it stands: the value shares the bytes it was cut
    // from (the path's, or the cut's working copy), which last until the
    // values are copied into the cut's block.
    static QByteArray utf8(QByteArrayView v) { return QByteArray::fromRawData(v.data(), v.size()); }
    static QByteArray clean(QByteArrayView v) { return CleanAsciiNamePart(v); }
    static QString text(QByteArrayView v) { return QString::fromLatin1(v); }
    static QByteArray owned(QByteArrayView v) { return v.toByteArray(); }
    static bool hasUnderscore(QByteArrayView v) { return v.contains('_'); }
    static QByteArray blanksForUnderscores(QByteArrayView v) { return owned(v).replace('_', ' '); }
};

// The working values of one file while its name is cut, in UTF-8 as the
// catalogue stores them.
template <class View> class Cut {
    using T = Text<View>;

public:
    // `name` is the file name at the end of the path whose UTF-8 is `pathUtf8`.
    Cut(View name, QByteArrayView pathUtf8) : m_pathUtf8(pathUtf8), m_name(name) {
        // Underscores stand for blanks; most names have none, and are cut
        // where they are.
        m_working = m_name;
        if (T::hasUnderscore(m_name)) {
            m_workingCopy = T::blanksForUnderscores(m_name);
            m_working = View(m_workingCopy);
        }
        cutAt(m_working, View(T::kPieceCut), m_pieces);
    }

    QByteArray TrackName, ArtistName, DiscName, TrackNo;
    int MissingPieces = 0;

    QString working() const { return T::text(m_working); }

    // The name as it stands, its bytes those of the path after its last "/".
    QByteArrayView fileName() const { return m_pathUtf8.sliced(m_pathUtf8.lastIndexOf('/') + 1); }

    void run(int convention) {
        if (convention == kAllInOne) {
            TrackName = T::utf8(withoutExtension(m_name));
            return;
        }
        if (convention < 0 || convention >= int(kRules.size())) {
            fallback(true);
            return;
        }
        const Rule& rule = kRules[convention];
        const qsizetype count = m_pieces.size();
        if (rule.exact ? count != rule.pieces : count < rule.pieces) {
            fallback(rule.fallbackToFileName);
            return;
        }
        for (const Op& op : std::span(rule.ops.data(), rule.opCount)) {
            try {
                apply(op);
            } catch (const MissingPiece&) {
                missingPiece();
            }
        }
    }

private:
    View pieceAt(int i) const {
        if (i >= m_pieces.size())
            throw MissingPiece{};
        return m_pieces[i];
    }
    View subAt(int i) const {
        if (i >= m_subs.size())
            throw MissingPiece{};
        return m_subs[i];
    }
    QByteArray& field(Field f) {
        switch (f) {
        case Field::Artist:
            return ArtistName;
        case Field::Track:
            return TrackName;
        case Field::Disc:
            return DiscName;
        case Field::TrackNo:
            return TrackNo;
        }
        return TrackNo;
    }

    void apply(const Op& op) {
        switch (op.kind) {
        case Op::Piece:
            field(op.field) = T::clean(pieceAt(op.a));
            break;
        case Op::Sub:
            field(op.field) = T::clean(subAt(op.a));
            break;
        case Op::SubPair: {
            typename T::Owned joined = T::owned(subAt(op.a));
            joined += T::kSubCut;
            joined += subAt(op.b);
            // Made of a text that ends here: the value is a copy of its own.
            QByteArray value = T::clean(View(joined));
            value.detach();
            field(op.field) = value;
            break;
        }
        case Op::Split: {
            // An empty piece cuts into no sub-pieces at all.
            const View p = pieceAt(op.a);
            m_subs.clear();
            if (!p.isEmpty())
                cutAt(p, View(T::kSubCut), m_subs);
            break;
        }
        }
    }

    // The title given by the name as a whole keeps its apostrophes doubled,
    // as the catalogue has always stored it.
    QByteArray fileNameAsTitle() const {
        QByteArray title = fileName().toByteArray();
        if (title.contains('\''))
            title.replace("'", "''");
        return title;
    }

    // The piece count does not fit: the file goes in under its whole name.
    void fallback(bool rawFileName) {
        ArtistName.clear();
        DiscName.clear();
        TrackNo.clear();
        TrackName = rawFileName ? fileNameAsTitle() : T::utf8(withoutExtension(m_working));
    }

    // A statement read a piece the name lacks: the file keeps its file name
    // as title and the cut goes on with the next statement. The host hears of
    // it when the row is taken.
    void missingPiece() {
        TrackName = fileNameAsTitle();
        ++MissingPieces;
    }

    QByteArrayView m_pathUtf8;
    View m_name;
    View m_working;
    typename T::Owned m_workingCopy;
    Pieces<View> m_pieces;
    Pieces<View> m_subs;
};

// Cuts the name and sets `out` from the cut (`name` as text or as ASCII bytes).
template <class View> void cutInto(View name, QByteArrayView pathUtf8, int convention, NameCut& out) {
    std::optional<Cut<View>> cut;
    try {
        cut.emplace(name, pathUtf8);
        cut->run(convention);
        out.setValues(
            {cut->TrackName, cut->ArtistName, cut->DiscName, cut->TrackNo, cut->fileName(), pathUtf8});
    } catch (...) {
        out.failure = std::current_exception();
    }
    if (cut && cut->MissingPieces > 0) {
        out.missingPieces = cut->MissingPieces;
        out.shownName = cut->working();
    }
}

bool isAscii(QByteArrayView bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return quint8(c) < 0x80; });
}

} // namespace

NameCut::Values NameCut::values() const {
    Values out;
    for (int v = 0; v < int(out.size()); ++v)
        out[size_t(v)] = value(v);
    return out;
}

void NameCut::setValues(const Values& values) {
    qsizetype bytes = 0;
    for (const QByteArrayView v : values)
        bytes += v.size();
    m_text.clear();
    m_text.reserve(size_t(bytes));
    for (size_t v = 0; v < values.size(); ++v) {
        m_bounds[v] = quint32(m_text.size());
        m_text.append(values[v].data(), size_t(values[v].size()));
    }
    m_bounds[values.size()] = quint32(m_text.size());
}

NameCut CutFileName(const QString& path, int convention, QByteArrayView pathUtf8) {
    NameCut out;
    out.convention = convention;
    // The path's UTF-8, made here when the caller had none.
    QByteArray made;
    if (pathUtf8.isNull()) {
        made = path.toUtf8();
        pathUtf8 = made;
    }
    const QByteArrayView nameBytes = pathUtf8.sliced(pathUtf8.lastIndexOf('/') + 1);
    if (isAscii(nameBytes))
        cutInto(nameBytes, pathUtf8, convention, out);
    else
        cutInto(QStringView(path).sliced(path.lastIndexOf(QLatin1Char('/')) + 1), pathUtf8, convention, out);
    return out;
}
