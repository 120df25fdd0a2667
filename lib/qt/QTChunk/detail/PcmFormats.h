// The codes of plain audio samples; what their sizes count is never a stored frame.
#pragma once

#include <qt/QTTypes.h>

#include <algorithm>
#include <iterator>

namespace Ketra::QT::wire {

inline constexpr unsigned int kPcmFormats[] = {
    fourCC("raw "), fourCC("twos"), fourCC("sowt"), fourCC("in24"), fourCC("in32"),
    fourCC("fl32"), fourCC("fl64"), fourCC("lpcm"), fourCC("pc8U"), fourCC("pc8S"),
    fourCC("p16s"), fourCC("p16S"), fourCC("p24s"), fourCC("p24S"), fourCC("p32s"),
    fourCC("p32S"), fourCC("f32l"), fourCC("f32b"), fourCC("f64l"), fourCC("f64b"),
};

inline bool isPcm(unsigned int format) {
    return std::find(std::begin(kPcmFormats), std::end(kPcmFormats), format) != std::end(kPcmFormats);
}

} // namespace Ketra::QT::wire
