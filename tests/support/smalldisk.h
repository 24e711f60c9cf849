#pragma once

#include <QString>

// A small, separate file system (tmpfs) mounted over a folder while one
// lives, so that a test can fill a disk. Mounting needs the rights of root;
// without them nothing is mounted and mounted() says so.
class SmallDisk {
public:
    SmallDisk(const QString& folder, int kilobytes);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool mounted() const { return m_mounted; }

private:
    QString m_folder;
    bool m_mounted = false;
};
