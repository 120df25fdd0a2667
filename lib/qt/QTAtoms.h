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
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTDataAtom.h>
