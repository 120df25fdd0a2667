// QTTrack and all its subclasses, with the atoms and the cursor that they name.
#pragma once

#include <qt/QTAtoms.h>
#include <qt/QTChunk.h>
#include <qt/QTTrack/QTTrack.h>
