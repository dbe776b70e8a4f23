#pragma once

#include <QString>

namespace tools {

/// Why a text may not be sent to a company as a statement, in English; empty when it may: one
/// SELECT, INSERT, UPDATE or DELETE (a WITH in front of it included), no second statement behind
/// it, and no name of the engine's own tables and functions.
QString statementProblem(const QString& sql);

}  // namespace tools
