#pragma once

#include <QString>
#include <QStringList>

// A seeded working folder for a test: the shared objects made as start-up makes
// them (paths, working folder with its templates, settings), and on request the
// catalogue open on the shared connection. Everything is removed again when it
// goes out of scope, so each test starts from the templates.
class TestWorkspace {
public:
    explicit TestWorkspace(bool openCatalogue = true);
    ~TestWorkspace();

    QString dataFolder() const;    // the working folder, with a trailing separator
    QString catalogueFile() const; // the working folder's kvsonglist.mdb
    QString settingsFile() const;
    QString documentsFolder() const;

    // Inserts catalogue rows from "Artist - Title" texts (path /songs/<text>.zip);
    // returns the ids in order.
    QList<qint64> addSongs(const QStringList& artistDashTitle);
    // The text of the error log, empty when there is none.
    static QString errorLog();
    // How many records the error log holds.
    static int errorLogRecords();

    // Removes every file the working folder and the documents folder hold.
    static void wipe();
    // The working folder as start-up finds it, with a trailing separator.
    static QString workingFolder();
    // A working folder seeded with the settings template only, its player the
    // real one without sound or picture; the catalogue is left to start-up.
    static void seedWithQuietPlayer();
};
