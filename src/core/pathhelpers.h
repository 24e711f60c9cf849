#pragma once

#include <QString>

// Appends the folder separator unless the text already ends in one.
QString AddBackslash(const QString& path);
// True when anything exists at `path`, a folder included.
bool FileExists(const QString& path);
// True only when `path` is a plain file (or a link to one): not a folder, a
// pipe or a device, which a program that opens it could wait on for ever.
bool IsRegularFile(const QString& path);
// True only when `path` (a trailing separator allowed) is a folder.
bool DirectoryExists(const QString& path);
// Creates each level of `path` in turn, ignoring levels that exist or fail, and
// returns the number of levels of the path.
int MakeDirectoryPath(const QString& path);
