// The least that a program can do which opens the store and reads the places: the peer of the extension's
// start.

#include <sqlite3.h>

#include <cstdlib>
#include <iostream>
#include <string>

int main() {
    const std::string path =
        std::string(std::getenv("NIMBUSCOPE_STORE")) + "/group.com.brisk-labs.Nimbuscope.sqlite";
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(database, "SELECT value FROM defaults WHERE key = 'places'", -1, &statement,
                           nullptr) != SQLITE_OK ||
        sqlite3_step(statement) != SQLITE_ROW) {
        return 1;
    }
    std::cout << "Hello, " << sqlite3_column_bytes(statement, 0) << " bytes" << std::endl;
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return 0;
}
