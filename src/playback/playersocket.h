#pragma once

#include <QString>

// Where the private player listens, and whom the program talks to there. The
// socket lies in a folder that only this user can enter: the runtime folder
// when it is private, else a folder made for the purpose below the temporary
// folder. A socket is connected to only when this user owns it, and a
// connection is kept only when the process at its other end runs as this user,
// so that no one else can stand in for the player.
namespace PlayerSocket {

// The socket's name inside its folder: the private instance's class name.
inline const QString kName = QStringLiteral("KVPLAY");

// The socket path for this run, chosen once; empty when no private place fits.
QString path();
// The socket `name` beside path(), for another instance of the program's own;
// empty when there is no private place or the path would not fit a socket address.
QString pathFor(const QString& name);

// The choice behind path(): `runtimeFolder` when it is private; else the folder
// "KVPLAY-<uid>" in `tempFolder` when it is private (made when missing); else a
// fresh private folder made there with mkdtemp. A path too long for a socket
// address is passed over. Empty when nothing fits.
QString choose(const QString& runtimeFolder, const QString& tempFolder);

// A directory itself (not a link to one), owned by this user, closed to everyone else.
bool isPrivateFolder(const QString& folder);
// A socket itself (not a link to one), owned by this user.
bool isOwnSocket(const QString& path);
// The process at the other end of the connected Unix socket `fd` runs as this user.
bool peerIsOwnUser(int fd);

} // namespace PlayerSocket
