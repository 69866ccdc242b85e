// HostBridge: the module's side of the host's private door (the
// HostExtension behind hostProc) and of the row protocol of the filter
// record.
#pragma once

#include <cstdint>

#include "frame/host_extension.h"
#include "frame/host_record.h"

namespace fancy {

// Zeroes the whole extension and heads it: signature from hostSig, version 4,
// the filter record.
void HeadHostExtension(HostExtension* extension, FilterRecord* record);

// Heads the extension and asks the host to fill it (hostProc selector 1),
// whatever hostSig says. A host without hostProc leaves every object null,
// which the prepare step then refuses.
void ReadHostExtension(FilterRecord* record, HostExtension* extension);

// Asks the host to fill the extension only when hostSig is the magic and
// hostProc is there; otherwise the extension is only headed. True when the
// host was asked.
bool ReadHostExtensionIfOffered(FilterRecord* record, HostExtension* extension);

// The extension as a dialog gets it: read when offered, then the host's
// colour settings are brought over to the module's own. A host without the
// extension gives a headed record whose objects are all null.
HostExtension ReadHostExtensionForDialog(FilterRecord* record);

// Sends a menu command of the host's menu (hostProc selector 3); dropped
// silently by a host without the extension.
void SendHostCommand(FilterRecord* record, uint32_t commandId);

// Copies the extension's help-file path, bounded to 259 characters even when
// the host did not terminate it.
void CopyHelpFile(const HostExtension& extension, char* out, uint32_t size);

// ---- row requests -----------------------------------------------------------

// Asks for rows [top, bottom) of filterRect's width, planes lo..hi, in and
// out alike.
void RequestRows(FilterRecord* record, int16_t top, int16_t bottom, int16_t loPlane,
                 int16_t hiPlane);

// Planes 0 .. planes - 1, in and out alike; the rectangles are left as
// they are.
void RequestAllPlanes(FilterRecord* record);

// The stroke effect's request: one whole row of three planes whatever
// `planes` says, the row's first pixel at filterRect.left.
void RequestStrokeRow(FilterRecord* record, int16_t row);

// Ends the run's requests: inRect and outRect all zero, and their planes.
void ClearRowRequest(FilterRecord* record);

// True while the record asks for anything.
bool HasRowRequest(const FilterRecord* record);

// Hands the delivered inRect rows back unchanged through outData (the rows
// and planes of inRect, as far as outRect covers them). Does nothing when a
// buffer is missing.
void PassRowsThrough(FilterRecord* record);

}  // namespace fancy
