// Every atom class by its type code.
#pragma once

#include <qt/QTAtoms.h>

#include <memory>
#include <string_view>

namespace hostile {

template <class... Atoms>
struct Types {};

namespace file_level {
using namespace Ketra::QT;
using All = Types<FTYP, MDAT, FREE, SKIP, WIDE, UUIDA, PNOT, CMOV, MOOV, TRAK, UDTA, MVHD, IODS>;
} // namespace file_level

namespace sample_tables {
using namespace Ketra::QT;
using All = Types<STTS, CTTS, STSS, STPS, SDTP, STDP, STSC, STSZ, STCO, CSLG, STSH, STBL, STSD, ELST>;
} // namespace sample_tables

namespace headers {
using namespace Ketra::QT;
using All = Types<TKHD, MDIA, MDHD, HDLR, MINF, VMHD, SMHD, HMHD, NMHD, GMHD, GMIN, DINF, DREF, EDTS, TREF>;
} // namespace headers

namespace others {
using namespace Ketra::QT;
using All = Types<TMCD, CHAP, SYNC, SCPT, SSRC, HINT, DPND, IPIR, MPOD, TCMI, TEXTA, HNTI, HINF, NSAV, TSEL,
                  TAPT, CLEF, PROF, ENOF, CLIP, CRGN, MATT, KMAT, CTAB, LOAD, IMAP, __IN, __TY, OBID, GAMA>;
} // namespace others

namespace entries {
using namespace Ketra::QT;
using All = Types<ESDS, MP4V, MP4A, MP4S, SAMR, S263, DAMR, D263>;
} // namespace entries

/// Calls `action.template operator()<Atom>()` for each class.
template <class Action, class... Atoms>
void eachOf(Types<Atoms...>, Action& action) {
    (action.template operator()<Atoms>(), ...);
}

template <class Action>
void eachAtomType(Action action) {
    eachOf(file_level::All{}, action);
    eachOf(sample_tables::All{}, action);
    eachOf(headers::All{}, action);
    eachOf(others::All{}, action);
    eachOf(entries::All{}, action);
}

} // namespace hostile
