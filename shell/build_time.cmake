string(TIMESTAMP seconds "%s" UTC)
file(WRITE ${OUTPUT}
    "#include <QtGlobal>\nextern const qint64 kProgramBuildTime;\nconst qint64 kProgramBuildTime = ${seconds};\n")
