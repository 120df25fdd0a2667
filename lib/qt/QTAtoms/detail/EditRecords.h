// How the entries of the edit list stand in the file.
#pragma once

#include <qt/QTAtoms/track/ELST.h>
#include <qt/wire/EntryTable.h>
#include <qt/wire/Oddities.h>

namespace Ketra::QT::wire {

struct Edit {
    std::uint32_t duration;
    std::int32_t mediaTime;
    float mediaRate;
};

struct EditEntry {
    using Record = ELSTData;
    using Value = Edit;
    static constexpr unsigned int width = 12;
    static Edit read(const unsigned char* p) {
        return {load32(p), static_cast<std::int32_t>(load32(p + 4)), odd::Rate16_16::read(p + 8)};
    }
    static void write(unsigned char* p, const Edit& edit) {
        store32(p, edit.duration);
        store32(p + 4, static_cast<std::uint32_t>(edit.mediaTime));
        odd::Rate16_16::write(p + 8, edit.mediaRate);
    }
    static Record* record(const Edit& edit) {
        return new ELSTData(edit.duration, edit.mediaTime, edit.mediaRate);
    }
    static Edit value(const ELSTData& data) {
        return {data.getDuration(), data.getMediaTime(), data.getMediaRate()};
    }
};

} // namespace Ketra::QT::wire
