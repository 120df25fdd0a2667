#include <qt/QTTrack/detail/AudioFormats.h>

#include <algorithm>
#include <iterator>

namespace Ketra::QT::wire {

namespace {

constexpr AudioFormat kFormats[] = {
    {fourCC("raw "), fourCC("raw "), Coding::kUnsignedPCM, 0, 0},
    {fourCC("pc8U"), fourCC("raw "), Coding::kUnsignedPCM, 1, 0},
    {fourCC("pc8S"), fourCC("sowt"), Coding::kPCM, 1, kLittle},
    {fourCC("sowt"), fourCC("sowt"), Coding::kPCM, 0, kLittle},
    {fourCC("twos"), fourCC("twos"), Coding::kPCM, 0, kBig},
    {fourCC("p16s"), fourCC("sowt"), Coding::kPCM, 2, kLittle},
    {fourCC("p16S"), fourCC("twos"), Coding::kPCM, 2, kBig},
    {fourCC("in24"), fourCC("in24"), Coding::kPCM, 3, 0},
    {fourCC("p24s"), fourCC("in24"), Coding::kPCM, 3, kLittle},
    {fourCC("p24S"), fourCC("in24"), Coding::kPCM, 3, kBig},
    {fourCC("in32"), fourCC("in32"), Coding::kPCM, 4, 0},
    {fourCC("p32s"), fourCC("in32"), Coding::kPCM, 4, kLittle},
    {fourCC("p32S"), fourCC("in32"), Coding::kPCM, 4, kBig},
    {fourCC("fl32"), fourCC("fl32"), Coding::kFloatPCM, 4, 0},
    {fourCC("f32l"), fourCC("fl32"), Coding::kFloatPCM, 4, kLittle},
    {fourCC("f32b"), fourCC("fl32"), Coding::kFloatPCM, 4, kBig},
    {fourCC("fl64"), fourCC("fl64"), Coding::kFloatPCM, 8, 0},
    {fourCC("f64l"), fourCC("fl64"), Coding::kFloatPCM, 8, kLittle},
    {fourCC("f64b"), fourCC("fl64"), Coding::kFloatPCM, 8, kBig},
    {fourCC("lpcm"), fourCC("lpcm"), Coding::kPCM, 0, 0},
    {fourCC("mp4a"), fourCC("mp4a"), Coding::kMPEG4, 0, 0},
    {fourCC("mp1a"), fourCC("mp4a"), Coding::kMPEG4, 0, 0},
    {fourCC("mp2a"), fourCC("mp4a"), Coding::kMPEG4, 0, 0},
    {fourCC("mp3a"), fourCC(".mp3"), Coding::kMP3, 0, 0},
    {fourCC(".mp3"), fourCC(".mp3"), Coding::kMP3, 0, 0},
    {fourCC("alac"), fourCC("alac"), Coding::kALAC, 0, 0},
    {fourCC("QDM2"), fourCC("QDM2"), Coding::kQDM2, 0, 0},
    {fourCC("samr"), fourCC("samr"), Coding::kAMR, 0, 0},
    {fourCC("amrn"), fourCC("samr"), Coding::kAMR, 0, 0},
    {fourCC("sawb"), fourCC("sawb"), Coding::kAMR, 0, 0},
    {fourCC("amrw"), fourCC("sawb"), Coding::kAMR, 0, 0},
    {fourCC("sqcp"), fourCC("sqcp"), Coding::kQCELP, 0, 0},
    {fourCC("sevc"), fourCC("sevc"), Coding::kEVRC, 0, 0},
};

} // namespace

AudioFormat audioFormat(unsigned int code) {
    const auto* row = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [code](const AudioFormat& format) { return format.code == code; });
    return row == std::end(kFormats) ? AudioFormat{code, code, Coding::kOther, 0, 0} : *row;
}

} // namespace Ketra::QT::wire
