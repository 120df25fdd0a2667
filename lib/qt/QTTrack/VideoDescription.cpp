// Reading the video sample description.
#include <qt/QTAtoms/detail/Descriptions.h>
#include <qt/QTAtoms/entries/D263.h>
#include <qt/QTAtoms/entries/STSDVideo.h>
#include <qt/QTTrack/QTVideoTrack.h>
#include <qt/QTTrack/detail/Extensions.h>
#include <qt/QTTrack/detail/SampleEntries.h>

#include <numeric>

namespace Ketra::QT {

namespace {

constexpr unsigned int kEntryHeader = 16;
constexpr unsigned int kPlainEntry = 86; // without extensions

/// Display widths per hundred lines, and the shapes that they stand for.
struct Shape {
    std::uint64_t widthPerHundred;
    unsigned int w;
    unsigned int h;
};
constexpr Shape kShapes[] = {{125, 5, 4}, {133, 4, 3}, {150, 3, 2}, {177, 16, 9}};

constexpr unsigned char kStartCode[] = {0, 0, 0, 1};

void appendSet(std::vector<unsigned char>& to, const unsigned char* set, std::uint64_t length) {
    to.insert(to.end(), std::begin(kStartCode), std::end(kStartCode));
    to.insert(to.end(), set, set + length);
}

QTFrame* frameOf(const std::vector<unsigned char>& bytes) {
    return bytes.empty() ? nullptr : wire::copyToFrame(bytes.data(), bytes.size()).release();
}

} // namespace

/// Walks one description: the fixed fields, then each extension by its row in a table.
class QTVideoTrack::DescriptionReader {
public:
    DescriptionReader(QTVideoTrack& track, STSDData& entry) : track_(track), entry_(entry) {}

    void read() {
        wire::Reader in(entry_.getData(), entry_.getDataSize());
        auto description = std::make_unique<STSDVideo>();
        wire::readBody(*description, in);
        takeFields(*description);
        walk(in);
        description->setFrameCount(track_.frameCount_);
        entry_.setExtraData(description.release());
        settleAspect();
    }

private:
    using Extension = wire::Extension;
    struct Row {
        unsigned int type;
        std::uint64_t least; // bytes without which the extension means nothing
        void (DescriptionReader::*read)(const Extension&);
    };
    static const Row kRows[];

    void takeFields(const STSDVideo& d);
    void walk(wire::Reader& in);
    void setAspect(std::uint64_t w, std::uint64_t h);
    void settleAspect();

    void esds(const Extension& atom);
    void d263(const Extension& atom);
    void fiel(const Extension& atom);
    void pasp(const Extension& atom);
    void clap(const Extension& atom);
    void smi(const Extension& atom);
    void avcC(const Extension& atom);
    void hvcC(const Extension& atom);
    void ares(const Extension& atom) { dnxhd(atom, 16, fourCC("dn44")); }
    void adhr(const Extension& atom) { dnxhd(atom, 12, fourCC("dh44")); }
    void dnxhd(const Extension& atom, std::uint64_t offset, unsigned int format444);
    void jp2h(const Extension& atom);
    void keepAtom(const Extension& atom);

    QTVideoTrack& track_;
    STSDData& entry_;
    bool clapSeen_ = false;
    bool paspSeen_ = false;
    float paspScale_ = 0; // width x horizontal / vertical spacing
};

const QTVideoTrack::DescriptionReader::Row QTVideoTrack::DescriptionReader::kRows[] = {
    {fourCC("esds"), 12, &DescriptionReader::esds}, {fourCC("d263"), 15, &DescriptionReader::d263},
    {fourCC("fiel"), 10, &DescriptionReader::fiel}, {fourCC("pasp"), 16, &DescriptionReader::pasp},
    {fourCC("clap"), 24, &DescriptionReader::clap}, {fourCC("SMI "), 16, &DescriptionReader::smi},
    {fourCC("avcC"), 13, &DescriptionReader::avcC}, {fourCC("hvcC"), 8, &DescriptionReader::hvcC},
    {fourCC("ARES"), 20, &DescriptionReader::ares}, {fourCC("ADHR"), 16, &DescriptionReader::adhr},
    {fourCC("jp2h"), 8, &DescriptionReader::jp2h},
};

void QTVideoTrack::DescriptionReader::takeFields(const STSDVideo& d) {
    track_.version_ = d.getVersion();
    track_.revisionLevel_ = d.getRevisionLevel();
    track_.vendor_ = d.getVendor();
    track_.temporalQuality_ = d.getTemporalQuality();
    track_.spatialQuality_ = d.getSpatialQuality();
    track_.width_ = d.getWidth();
    track_.height_ = d.getHeight();
    track_.horizontalResolution_ = static_cast<unsigned int>(d.getHorizontalResolution());
    track_.verticalResolution_ = static_cast<unsigned int>(d.getVerticalResolution());
    track_.frameCount_ = 1;
    track_.depth_ = d.getDepth();
    track_.colorTableID_ = d.getColorTableID();
    track_.setCompressorName(d.getCompressorNameLength(), d.getCompressorName());
    track_.setDataFormat(entry_.getDataFormat());
    track_.extended_ = std::uint64_t{entry_.getDataSize()} + kEntryHeader > kPlainEntry;
}

void QTVideoTrack::DescriptionReader::walk(wire::Reader& in) {
    while (in.left() >= wire::kExtensionHeader) {
        const wire::ExtensionHeader header(in);
        if (header.size < wire::kExtensionHeader) return;
        const Extension atom = wire::takeExtension(in, header.size);
        const Row* row = std::find_if(std::begin(kRows), std::end(kRows),
                                      [&](const Row& r) { return r.type == header.type; });
        if (row != std::end(kRows) && atom.has(row->least)) (this->*row->read)(atom);
    }
}

void QTVideoTrack::DescriptionReader::esds(const Extension& atom) {
    const wire::DecoderConfiguration found(atom);
    track_.esds_ = found.esds;
    if (!found.config) return;
    const unsigned int kind = found.config->getObjectTypeIndication();
    if (kind >= 0x60 && kind <= 0x65) track_.setDataFormat(fourCC("mp2v"));
    if (kind == 0x6A) track_.setDataFormat(fourCC("mp1v"));
    if (auto info = found.specificInfo()) track_.setDecoderSpecificInfo(info.release());
}

void QTVideoTrack::DescriptionReader::d263(const Extension& atom) {
    D263 config;
    wire::Reader in = atom.payload();
    wire::readBody(config, in);
    track_.h263Level_ = config.getH263Level();
    track_.h263Profile_ = config.getH263Profile();
}

void QTVideoTrack::DescriptionReader::fiel(const Extension& atom) {
    track_.fields_ = static_cast<unsigned char>(atom.u8(8));
    track_.fieldOrder_ = static_cast<unsigned char>(atom.u8(9));
}

void QTVideoTrack::DescriptionReader::setAspect(std::uint64_t w, std::uint64_t h) {
    const std::uint64_t divisor = std::gcd(w, h);
    if (!divisor) return;
    track_.aspectW_ = static_cast<unsigned int>(w / divisor);
    track_.aspectH_ = static_cast<unsigned int>(h / divisor);
}

void QTVideoTrack::DescriptionReader::pasp(const Extension& atom) {
    const std::uint64_t horizontal = std::max(1U, atom.u32(8));
    const std::uint64_t vertical = std::max(1U, atom.u32(12));
    setAspect(track_.width_ * horizontal, track_.height_ * vertical);
    // Behind a clean aperture the quotient of the spacings is an integer.
    track_.displayWidth_ = static_cast<unsigned int>(
        clapSeen_ ? track_.displayWidth_ * (horizontal / vertical) : track_.width_ * horizontal / vertical);
    if (track_.displayHeight_ == 0) track_.displayHeight_ = track_.height_;
    paspScale_ =
        static_cast<float>(track_.width_) * static_cast<float>(horizontal) / static_cast<float>(vertical);
    paspSeen_ = true;
}

void QTVideoTrack::DescriptionReader::clap(const Extension& atom) {
    const unsigned int widthD = atom.u32(12);
    const unsigned int heightD = atom.u32(20);
    if (!widthD || !heightD) return;
    track_.displayWidth_ = atom.u32(8) / widthD;
    track_.displayHeight_ = atom.u32(16) / heightD;
    if (paspSeen_ && track_.width_) {
        track_.displayWidth_ = wire::toUnsigned32(static_cast<double>(track_.displayWidth_) *
                                                  static_cast<double>(paspScale_) / track_.width_);
    }
    clapSeen_ = true;
}

void QTVideoTrack::DescriptionReader::smi(const Extension& atom) {
    if (atom.u32(8) != fourCC("SEQH")) return;
    const std::uint64_t length = std::min<std::uint64_t>(atom.u32(12), atom.size() - 16);
    const unsigned char* record = atom.data() + 16;
    if (track_.getDataFormat() == fourCC("MPG4")) {
        if (length) track_.setDecoderSpecificInfo(wire::copyToFrame(record, length).release());
        track_.setDataFormat(fourCC("mp4v"));
        entry_.setDataFormat(fourCC("mp4v"));
    } else if (track_.getDataFormat() == fourCC("SVQ3")) {
        track_.svq3_.assign(record, record + length);
    }
}

void QTVideoTrack::DescriptionReader::avcC(const Extension& atom) {
    track_.h264Profile_ = static_cast<unsigned char>(atom.u8(9));
    track_.h264Level_ = static_cast<unsigned char>(atom.u8(11));
    track_.h264SizeSize_ = static_cast<unsigned char>((atom.u8(12) & 3) + 1);
    std::vector<unsigned char> sequence;
    std::vector<unsigned char> picture;
    constexpr std::uint64_t kFirstSet = 14;
    std::uint64_t at = kFirstSet + 2;
    const std::uint64_t first = atom.has(at) ? atom.u16(kFirstSet) : atom.size();
    if (atom.has(at + first)) {
        appendSet(sequence, atom.data() + at, first);
        at += first + 1; // and the count of picture sets
        while (atom.has(at + 4)) {
            const std::uint64_t length = atom.u16(at);
            at += 2;
            if (!atom.has(at + length)) break;
            appendSet(picture, atom.data() + at, length);
            at += length;
        }
    }
    track_.setH264SeqParSet(frameOf(sequence));
    track_.setH264PictParSet(frameOf(picture));
}

void QTVideoTrack::DescriptionReader::hvcC(const Extension& atom) {
    track_.setH265DecoderSpecificInfo(wire::copyToFrame(atom.data(), atom.size()).release());
    track_.setDataFormat(fourCC("hvc1"));
}

void QTVideoTrack::DescriptionReader::dnxhd(const Extension& atom, std::uint64_t offset,
                                            unsigned int format444) {
    track_.dnxhdType_ = atom.u32(offset);
    if (track_.dnxhdType_ == 1256 || track_.dnxhdType_ == 1270) track_.setDataFormat(format444);
    keepAtom(atom);
}

void QTVideoTrack::DescriptionReader::jp2h(const Extension& atom) {
    if (track_.getDataFormat() == fourCC("mjp2")) keepAtom(atom);
}

/// Configuration that is written back as it was.
void QTVideoTrack::DescriptionReader::keepAtom(const Extension& atom) {
    track_.setDecoderSpecificInfo(wire::copyToFrame(atom.data(), atom.size()).release());
}

void QTVideoTrack::DescriptionReader::settleAspect() {
    const std::uint64_t width = track_.displayWidth_;
    const std::uint64_t height = track_.displayHeight_;
    if (clapSeen_ && paspSeen_ && height) {
        const Shape* shape = std::find_if(std::begin(kShapes), std::end(kShapes), [&](const Shape& s) {
            return s.widthPerHundred == width * 100 / height;
        });
        if (shape != std::end(kShapes)) {
            track_.setDisplayAspectRatio(shape->w, shape->h);
        } else {
            track_.setDisplayAspectRatio(track_.displayWidth_, track_.displayHeight_);
        }
    }
    if (track_.aspectW_ || track_.aspectH_) return;
    if (width && height) {
        setAspect(width, height);
    } else {
        setAspect(track_.width_, track_.height_);
    }
}

int QTVideoTrack::parseStsd(QTAtom* atom) {
    STSD* stsd = wire::descriptionTable(atom);
    if (!stsd) return -1;
    const std::vector<STSDData*> entries =
        wire::describedEntries(*stsd, "Ketra::QT::QTVideoTrack::parseStsd");
    if (!entries.empty()) DescriptionReader(*this, *entries.front()).read();
    return 0;
}

} // namespace Ketra::QT
