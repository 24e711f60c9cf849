#pragma once

#include <QString>

// Makes the working folder when it is missing and seeds it from the install
// folder's templates; sets WorkingFolder. Runs three times in each start.
void CheckWorkingFolder();
// The working folder holds the singers' names and history: group and others
// lose every right to it and to what lies in it. CheckWorkingFolder does this
// at every start, and sets the process's file-creation mask so that whatever
// the program makes later (settings rewrites, the log, the catalogue's new
// copies and side files, unpacked songs) is private too.
void KeepPrivate(const QString& workingFolder);
// Copies "settings.ini" and "kvsonglist.mdb" from the install folder into the
// working folder, each only when the working folder lacks it: a host's own
// settings and catalogue are never replaced.
void CopyApplicationFiles(const QString& workingFolder, const QString& installFolder);
// The /reset move: every catalogue of the data folder goes whole (side files
// folded in or carried along) to the documents folder, under a name stamped
// with the date and time; the settings stay.
void MoveCataloguesToDocuments();
// Deletes the Temp folder of the working folder (at exit).
void RemoveTempFolder();
