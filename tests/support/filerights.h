#pragma once

// While one lives, the calling thread has no right to pass over file
// permissions, even when the tests run as root: a file or folder made
// unreadable with chmod is then unreadable to the code under test too.
class WithoutFileRights {
public:
    WithoutFileRights();
    ~WithoutFileRights();
    WithoutFileRights(const WithoutFileRights&) = delete;
    WithoutFileRights& operator=(const WithoutFileRights&) = delete;

private:
    unsigned m_dropped = 0;
};
