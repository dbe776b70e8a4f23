/* The baseline for the products step over ODBC: a plain C program that sends the same statements, one
 * query of the products and one prepared UPDATE for each. Usage: plain_odbc CONNECTION-STRING */
#include <math.h>
#include <sql.h>
#include <sqlext.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

enum { kLevels = 9, kMost = 1000000 };

struct product {
    char number[20];
    double prices[kLevels];
};

static void must(SQLRETURN code, SQLSMALLINT type, SQLHANDLE handle, const char* what) {
    SQLCHAR state[6] = "", message[500] = "";
    SQLINTEGER native[2] = {0, 0};
    SQLSMALLINT length;
    if (code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO || code == SQL_NO_DATA) return;
    SQLGetDiagRec(type, handle, 1, state, native, message, sizeof message, &length);
    fprintf(stderr, "%s: %s %s\n", what, state, message);
    exit(1);
}

static double seconds(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + (double)now.tv_nsec * 1e-9;
}

int main(int count, char** arguments) {
    static struct product products[kMost];
    const char* select =
        "SELECT NUMERO, HINTA, KAKSOISHINTA, HINTA3, HINTA4, HINTA5, HINTA6, HINTA7, HINTA8, HINTA9, "
        "LVV, ALV2, OSTOVERO, HRKPL, VERKKOKAUPPA, KESKIHINTA, VIIMOSTOHINTA, ANNOSHINTA FROM TUOTE "
        "WHERE ( lvv = 1 OR alv2 = 1 OR ostovero = 1)";
    const char* update =
        "UPDATE TUOTE SET HINTA = ?, KAKSOISHINTA = ?, HINTA3 = ?, HINTA4 = ?, HINTA5 = ?, HINTA6 = ?, "
        "HINTA7 = ?, HINTA8 = ?, HINTA9 = ?, LVV=5, MUUTETTUPVM = {d '2024-09-01'}, "
        "MUUTETTUTIME = CURTIME() WHERE NUMERO = ?";
    SQLHENV environment;
    SQLHDBC connection;
    SQLHSTMT query, change;
    struct product row;
    double others[8];
    SQLLEN lengths[18];
    int i, n = 0;
    double start, read;
    if (count < 2) return 2;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, (SQLPOINTER)SQL_OV_ODBC3, 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    must(SQLDriverConnect(connection, NULL, (SQLCHAR*)arguments[1], SQL_NTS, NULL, 0, NULL,
                          SQL_DRIVER_NOPROMPT),
         SQL_HANDLE_DBC, connection, "connect");
    SQLAllocHandle(SQL_HANDLE_STMT, connection, &query);
    SQLAllocHandle(SQL_HANDLE_STMT, connection, &change);
    must(SQLExecDirect(query, (SQLCHAR*)"UPDATE TUOTE SET LVV=1", SQL_NTS), SQL_HANDLE_STMT, query,
         "reset");

    start = seconds();
    must(SQLExecDirect(query, (SQLCHAR*)select, SQL_NTS), SQL_HANDLE_STMT, query, select);
    SQLBindCol(query, 1, SQL_C_CHAR, row.number, sizeof row.number, &lengths[0]);
    for (i = 0; i < kLevels; i++)
        SQLBindCol(query, (SQLUSMALLINT)(i + 2), SQL_C_DOUBLE, &row.prices[i], 0, &lengths[i + 1]);
    for (i = 0; i < 8; i++)
        SQLBindCol(query, (SQLUSMALLINT)(i + 11), SQL_C_DOUBLE, &others[i], 0, &lengths[i + 10]);
    while (n < kMost && SQLFetch(query) == SQL_SUCCESS) products[n++] = row;
    SQLFreeStmt(query, SQL_CLOSE);
    read = seconds() - start;

    must(SQLPrepare(change, (SQLCHAR*)update, SQL_NTS), SQL_HANDLE_STMT, change, update);
    for (i = 0; i < kLevels; i++)
        SQLBindParameter(change, (SQLUSMALLINT)(i + 1), SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 15, 0,
                         &row.prices[i], 0, NULL);
    lengths[0] = SQL_NTS;
    SQLBindParameter(change, kLevels + 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 18, 0, row.number,
                     sizeof row.number, &lengths[0]);
    for (int product = 0; product < n; product++) {
        row = products[product];
        for (i = 0; i < kLevels; i++)
            row.prices[i] = nearbyint(row.prices[i] * 1.0120967741935485 * 100) / 100;
        must(SQLExecute(change), SQL_HANDLE_STMT, change, update);
    }
    printf("plain: %d products, %.3f s, query %.3f s\n", n, seconds() - start, read);
    SQLFreeHandle(SQL_HANDLE_STMT, query);
    SQLFreeHandle(SQL_HANDLE_STMT, change);
    SQLDisconnect(connection);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
    return 0;
}
