#include "playersocket.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// What sockaddr_un can hold, its terminator left out.
constexpr qsizetype kMaxSocketPath = sizeof(sockaddr_un::sun_path) - 1;

QString socketIn(const QString& folder, const QString& name = PlayerSocket::kName) {
    if (folder.isEmpty())
        return {};
    const QString path = QDir(folder).filePath(name);
    return QFile::encodeName(path).size() <= kMaxSocketPath ? path : QString();
}

} // namespace

namespace PlayerSocket {

bool isPrivateFolder(const QString& folder) {
    struct stat st;
    if (folder.isEmpty() || ::lstat(QFile::encodeName(folder).constData(), &st) != 0)
        return false;
    return S_ISDIR(st.st_mode) && st.st_uid == ::geteuid() && (st.st_mode & 077) == 0;
}

bool isOwnSocket(const QString& path) {
    struct stat st;
    if (path.isEmpty() || ::lstat(QFile::encodeName(path).constData(), &st) != 0)
        return false;
    return S_ISSOCK(st.st_mode) && st.st_uid == ::geteuid();
}

bool peerIsOwnUser(int fd) {
    struct ucred cred;
    socklen_t size = sizeof cred;
    if (fd < 0 || ::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &cred, &size) != 0 || size != sizeof cred)
        return false;
    return cred.uid == ::geteuid();
}

QString choose(const QString& runtimeFolder, const QString& tempFolder) {
    if (isPrivateFolder(runtimeFolder)) {
        if (const QString path = socketIn(runtimeFolder); !path.isEmpty())
            return path;
    }
    if (tempFolder.isEmpty())
        return {};
    const QString stem = QDir(tempFolder).filePath(QStringLiteral("%1-%2").arg(kName).arg(::geteuid()));
    // A folder of that name that someone else made, or that others may enter,
    // is left alone: the fresh folder below is the way out.
    if (::mkdir(QFile::encodeName(stem).constData(), 0700) == 0 || errno == EEXIST) {
        if (isPrivateFolder(stem)) {
            if (const QString path = socketIn(stem); !path.isEmpty())
                return path;
        }
    }
    QByteArray pattern = QFile::encodeName(stem) + "-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        return {};
    return socketIn(QFile::decodeName(pattern));
}

QString path() {
    static const QString chosen = [] {
        const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
        return choose(QFile::decodeName(runtime), QDir::tempPath());
    }();
    return chosen;
}

QString pathFor(const QString& name) {
    const QString player = path();
    return player.isEmpty() ? QString() : socketIn(QFileInfo(player).path(), name);
}

} // namespace PlayerSocket
