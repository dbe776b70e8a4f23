#pragma once

#include <QString>
#include <array>

namespace company {

/// The definitions that "/E" runs, in this order; empty names are skipped.
using BatchList = std::array<QString, 4>;

/// Full path of "ALVMUUTOS.INI" to save to: beside the program, or in the user's settings folder if
/// the program's folder is not writable.
QString AlvMuutosIniName();

/// The folders in which the list can be.
struct BatchListFolders {
    QString program;
    bool programIsWritable = false;
    QString user;  ///< the user's settings folder

    static BatchListFolders ofThisProgram();
};
/// The list to read: the one that would be saved to, or, while that does not exist, the one beside
/// a program whose folder is not writable.
QString batchListToRead(const BatchListFolders& folders = BatchListFolders::ofThisProgram());

/// Section "ASETUKSET", keys maar1..maar4; missing keys read as empty.
/// @throws data::DataError naming the file.
BatchList readBatchList(const QString& fileName);
/// One line in Finnish: which file was read and the names in it, or that it holds none and why.
/// @throws like readBatchList()
QString batchListText(const QString& fileName, const BatchList& list);

/// What a batch does besides running its definitions: keys of the same section.
struct BatchSettings {
    bool report = false;   ///< "raportti=1": a PDF report into the company's folder
    QString backupFolder;  ///< "varmuuskopio=FOLDER": a checked backup there first; empty: none
};
/// Missing keys leave the defaults.
/// @throws data::DataError naming file, key and value: raportti is neither 0 nor 1, the folder is
/// no full path.
BatchSettings readBatchSettings(const QString& fileName);

/// Leaves all other keys of the file as they are.
void writeBatchList(const QString& fileName, const BatchList& list);

}  // namespace company
