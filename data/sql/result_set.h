#pragma once

#include <QByteArray>
#include <QTemporaryFile>
#include <memory>
#include <vector>

#include "data/engine/engine.h"

namespace data {

/// The rows of a query as of its opening, in compact form: kept in blocks in memory, and moved to a
/// temporary file above a limit. Read forward; can restart from the first row.
/// A row is its length (4 bytes) and its cells. A cell is a tag and: nothing (NULL), an integer as
/// a zigzag varint, 8 bytes of a double, or a varint length and UTF-8 text.
class ResultSet {
  public:
    /// Bytes kept in memory before the rows move to a file, and bytes of one block.
    static constexpr qint64 kMemoryBound = qint64{16} * 1024 * 1024;
    static constexpr qsizetype kBlockSize = qsizetype{256} * 1024;

    explicit ResultSet(int columns, qint64 memoryBound = kMemoryBound);

    /// Appends the current row of a statement. @throws DataError(DiskFull, Io).
    void append(const SqlStatement& statement);
    qint64 rowCount() const { return m_rows; }

    /// Moves to the first row. @return false if there is none.
    bool first();
    /// Moves to the next row. @return false at the end: the last row stays current.
    bool next();
    /// A cell of the current row: invalid (NULL), qint64, double or QString.
    Value value(int column) const;

  private:
    struct Block {
        QByteArray bytes;    // empty if it is in the file
        qint64 offset = -1;  // in the file
        qsizetype size = 0;
    };
    void spill();
    void writeOut(Block& block);
    void load(size_t block);
    void enterRow(qsizetype at);

    int m_columns;
    qint64 m_memoryBound;
    qint64 m_rows = 0;
    qint64 m_inMemory = 0;
    std::vector<Block> m_blocks;
    QByteArray m_row;  // row being written
    std::unique_ptr<QTemporaryFile> m_file;
    qint64 m_fileSize = 0;

    size_t m_block = 0;  // block being read
    QByteArray m_bytes;  // its bytes
    qint64 m_rowIndex = -1;
    qsizetype m_nextAt = 0;
    std::vector<qsizetype> m_cells;  // offsets of the current row's cells in m_bytes
};

}  // namespace data
