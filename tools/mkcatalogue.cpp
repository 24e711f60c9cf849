// Build-time tool: mkcatalogue SCHEMA.sql OUTPUT.mdb
// Runs the schema text on a new, empty database file.
#include <sqlite3.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: mkcatalogue SCHEMA.sql OUTPUT.mdb\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    if (!in) {
        std::fprintf(stderr, "mkcatalogue: cannot read %s\n", argv[1]);
        return 1;
    }
    std::stringstream schema;
    schema << in.rdbuf();
    std::remove(argv[2]);
    sqlite3* db = nullptr;
    if (sqlite3_open(argv[2], &db) != SQLITE_OK) {
        std::fprintf(stderr, "mkcatalogue: cannot create %s\n", argv[2]);
        return 1;
    }
    char* err = nullptr;
    const std::string sql = schema.str();
    const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &err);
    if (rc != SQLITE_OK) {
        std::fprintf(stderr, "mkcatalogue: %s\n", err ? err : "schema failed");
        sqlite3_free(err);
        sqlite3_close(db);
        std::remove(argv[2]);
        return 1;
    }
    sqlite3_close(db);
    return 0;
}
