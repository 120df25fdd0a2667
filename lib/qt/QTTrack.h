// QTTrack and all its subclasses, with the atoms and the cursor that they name.
#pragma once

#include <qt/QTAtoms.h>
#include <qt/QTChunk.h>
#include <qt/QTTrack/QTAudioHintTrack.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/QTDescriptionTrack.h>
#include <qt/QTTrack/QTHintTrack.h>
#include <qt/QTTrack/QTTextTrack.h>
#include <qt/QTTrack/QTTimeCodeTrack.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/QTTrack/QTVideoHintTrack.h>
#include <qt/QTTrack/QTVideoTrack.h>
