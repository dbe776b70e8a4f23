/* The baseline for the products step: a plain C program that sends the same statements to an ordinary
   SQLite table with the same columns, one commit each, with the same durability (write-ahead log,
   synchronous FULL). Usage: plain_products ordinary.db SOURCE_CLASS TARGET_CLASS COEFFICIENT */
#include <math.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static void check(sqlite3* db, int rc) {
    if (rc != SQLITE_OK && rc != SQLITE_DONE && rc != SQLITE_ROW) {
        fprintf(stderr, "%s\n", sqlite3_errmsg(db));
        exit(1);
    }
}

int main(int argc, char** argv) {
    if (argc != 5)
        return 2;
    sqlite3* db;
    sqlite3_stmt *all, *set = NULL;
    char sql[2000], last[2000] = "";
    const double k = atof(argv[4]);
    check(NULL, sqlite3_open(argv[1], &db));
    check(db, sqlite3_exec(db,
                           "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA wal_autocheckpoint=4000;"
                           "PRAGMA mmap_size=1073741824; PRAGMA cache_size=-32000",
                           NULL, NULL, NULL));
    snprintf(sql, sizeof sql,
             "SELECT NUMERO, HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, HINTA6, HINTA7, HINTA8, HINTA9, LVV, "
             "ALV2, OSTOVERO, HRKPL, VERKKOKAUPPA, KESKIHINTA, VIIMOSTOHINTA, ANNOSHINTA FROM TUOTE "
             "WHERE ( lvv = %s OR alv2 = %s OR ostovero = %s)",
             argv[2], argv[2], argv[2]);
    check(db, sqlite3_prepare_v2(db, sql, -1, &all, NULL));
    /* the whole result is read first: a cursor must not stay open across commits */
    size_t n = 0, room = 1024;
    struct Row { char number[19]; double price[9]; int vat[3]; } *rows = malloc(room * sizeof *rows);
    while (sqlite3_step(all) == SQLITE_ROW) {
        if (n == room)
            rows = realloc(rows, (room *= 2) * sizeof *rows);
        snprintf(rows[n].number, sizeof rows[n].number, "%s", (const char*)sqlite3_column_text(all, 0));
        for (int i = 0; i < 9; i++)
            rows[n].price[i] = sqlite3_column_double(all, 1 + i);
        for (int i = 0; i < 3; i++)
            rows[n].vat[i] = sqlite3_column_int(all, 10 + i);
        n++;
    }
    sqlite3_finalize(all);
    const int source = atoi(argv[2]);
    char today[16];
    time_t t = time(NULL);
    strftime(today, sizeof today, "%Y-%m-%d", localtime(&t));
    for (size_t r = 0; r < n; r++) {
        int at = snprintf(sql, sizeof sql,
                          "UPDATE TUOTE SET HINTA = :HINTA1, KAKSOISHINTA = :HINTA2, HINTA3 = :HINTA3, HINTA4 = "
                          ":HINTA4, HINTA5 = :HINTA5, HINTA6 = :HINTA6, HINTA7 = :HINTA7, HINTA8 = :HINTA8, HINTA9 "
                          "= :HINTA9");
        static const char* column[3] = {"LVV", "ALV2", "OSTOVERO"};
        for (int i = 0; i < 3; i++)
            if (rows[r].vat[i] == source)
                at += snprintf(sql + at, sizeof sql - (size_t)at, ", %s=%s", column[i], argv[3]);
        snprintf(sql + at, sizeof sql - (size_t)at,
                 ", MUUTETTUPVM = '%s', MUUTETTUTIME = time('now','localtime') WHERE NUMERO = :TUOTENRO", today);
        if (strcmp(sql, last) != 0) { /* prepares again only when the text changes */
            sqlite3_finalize(set);
            check(db, sqlite3_prepare_v2(db, sql, -1, &set, NULL));
            strcpy(last, sql);
        }
        for (int i = 0; i < 9; i++)
            sqlite3_bind_double(set, i + 1, nearbyint(rows[r].price[i] * k * 100) / 100);
        sqlite3_bind_text(set, 10, rows[r].number, -1, SQLITE_TRANSIENT);
        check(db, sqlite3_step(set));
        check(db, sqlite3_reset(set));
    }
    sqlite3_finalize(set);
    sqlite3_close(db);
    printf("%zu products\n", n);
    return 0;
}
