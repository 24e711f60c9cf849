#pragma once

// The import's transactions on the shared catalogue connection. They nest the
// way the host's runs can nest (a run started while another one waits between
// two folders): the outermost level is a real transaction and each inner level
// a savepoint, so that committing or rolling back an inner run acts on its own
// rows only. Each throws a KvError with the database's text when it fails.
void BeginTrans();
void CommitTrans();
void RollbackTrans();

// True while the shared connection has a transaction open.
bool InTransaction();
