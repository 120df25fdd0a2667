// Every atom class, entry record and descriptor of the library.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/QTAtoms/entries/STSDData.h>
#include <qt/QTAtoms/entries/STSDHint.h>
#include <qt/QTAtoms/entries/STSDText.h>
#include <qt/QTAtoms/entries/STSDTimeCode.h>
#include <qt/QTAtoms/entries/STSDVideo.h>
#include <qt/QTAtoms/movie/IODS.h>
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/QTAtoms/systems/DecoderConfigDescriptor.h>
#include <qt/QTAtoms/systems/DecoderSpecificInfo.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/QTAtoms/systems/ESDescriptor.h>
#include <qt/QTAtoms/systems/ESIDInc.h>
#include <qt/QTAtoms/systems/ESIDRef.h>
#include <qt/QTAtoms/systems/InitialObjectDescriptor.h>
#include <qt/QTAtoms/systems/MP4ObjectData.h>
#include <qt/QTAtoms/systems/MPOD.h>
#include <qt/QTAtoms/systems/ObjectDescriptor.h>
#include <qt/QTAtoms/systems/SLConfigDescriptor.h>
#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTDataAtom.h>
