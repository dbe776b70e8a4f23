#pragma once

#include <QFile>
#include <stdexcept>

namespace test {

inline QByteArray fileBytes(const QString& fileName) {
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString& fileName, const QByteArray& bytes) {
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("test file cannot be written");
}

}  // namespace test
