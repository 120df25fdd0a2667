// The data formats of sound tracks, and the constants that reading and writing share.
#pragma once

#include <qt/QTTypes.h>

namespace Ketra::QT::wire {

constexpr unsigned int kBig = fourCC("big ");
constexpr unsigned int kLittle = fourCC("lit ");

enum class Coding { kPCM, kFloatPCM, kUnsignedPCM, kMPEG4, kMP3, kALAC, kQDM2, kAMR, kQCELP, kEVRC, kOther };

inline bool isPCM(Coding coding) {
    return coding == Coding::kPCM || coding == Coding::kFloatPCM || coding == Coding::kUnsignedPCM;
}
inline bool isSpeech(Coding coding) {
    return coding == Coding::kAMR || coding == Coding::kQCELP || coding == Coding::kEVRC;
}

/// A data format of the track: the code it is written under, and what is known of its samples.
struct AudioFormat {
    unsigned int code;
    unsigned int written;
    Coding coding;
    unsigned int bytes;  // of one sample; 0: as the track says
    unsigned int endian; // 0: as the track says
};

/// A code that is not known is written as it is.
AudioFormat audioFormat(unsigned int code);

/// By the sampling frequency index of an MPEG-4 audio configuration.
inline constexpr unsigned int kSampleRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                                22050, 16000, 12000, 11025, 8000,  7350};

} // namespace Ketra::QT::wire
