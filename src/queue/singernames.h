#pragma once

#include <QStringList>

// The known singer names that the singer dialogs offer. Index 0 is empty (the
// entry a dialog opens with), index 1 the default name, then the singers of the
// history and the names added in this run. The array's top slot is never
// offered: the lists stop one short of it, and a name added later is stored
// in that slot, which may still hold the last name read from the history.
extern QStringList SingerNames;

// Sizes the array to at least three slots, keeping what is there, and sets
// index 0 to empty and index 1 to `defaultName`.
void InitSingerNames(const QString& defaultName);

// Appends the distinct singers of tblKaraokeTrackHistory from index 2 upward,
// each growing the array to end at it. Guarded: a failure is logged.
void LoadSingerNames();

// Adds `clientName` when no entry from index 1 to the top index less 1 equals
// it (case and all): the array grows by one and the name lands in the old top slot.
void AddToListArray(const QString& clientName);

// What a dialog's list shows: index 0 to the top index less 1.
QStringList SingerNamesForList();
