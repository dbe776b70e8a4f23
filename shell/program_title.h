#pragma once

#include <QString>

namespace shell {

inline const QString kProgramTitle = QStringLiteral("Taksavaihe 1.9.2024");
inline const QString kProgramVersion = QStringLiteral("4.0beta");

}  // namespace shell
