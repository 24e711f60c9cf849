#include "smalldisk.h"

#include <QDir>
#include <QFile>

#include <sys/mount.h>

SmallDisk::SmallDisk(const QString& folder, int kilobytes) : m_folder(folder) {
    QDir().mkpath(folder);
    const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k,mode=0700";
    m_mounted = ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", MS_NOSUID | MS_NODEV,
                        options.constData()) == 0;
}

SmallDisk::~SmallDisk() {
    if (m_mounted)
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}
