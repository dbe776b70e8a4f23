# Precompiled headers, since headers of Qt and the standard library take most of the compile time.
# Three sets, each compiled once and shared by all targets of its kind. The nightly build with
# TAKSAVAIHE_PCH=OFF finds sources that miss an include.
option(TAKSAVAIHE_PCH "Precompiled headers" ON)
if(TAKSAVAIHE_PCH AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # the header may come from the compiler cache, older or younger than its sources
    add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-Xclang -fno-pch-timestamp>")
endif()

set(pch_core
    <QByteArray> <QDate> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QList> <QMap>
    <QRegularExpression> <QString> <QStringList> <QTextStream> <QVariant>
    <algorithm> <array> <chrono> <cmath> <exception> <functional> <map> <memory> <optional> <string>
    <utility> <vector>)
# the widgets that several windows use: all of <QtWidgets> would make a file of 300 MB
set(pch_widgets ${pch_core}
    <QApplication> <QComboBox> <QDialog> <QGridLayout> <QGroupBox> <QHeaderView> <QKeyEvent> <QLabel>
    <QLineEdit> <QMimeData> <QPainter> <QPointer> <QProgressBar> <QPushButton> <QScrollBar> <QTableView>
    <QTimer> <QVBoxLayout> <QWidget>)
set(pch_tests ${pch_core} <gtest/gtest.h>)

# taksavaihe_pch(TARGET core|widgets|tests)
function(taksavaihe_pch target kind)
    if(NOT TAKSAVAIHE_PCH)
        return()
    endif()
    set(owner taksavaihe_pch_${kind})
    if(NOT TARGET ${owner})
        set(source ${CMAKE_BINARY_DIR}/${owner}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "// Holds a precompiled header.\n" @ONLY)
        add_library(${owner} OBJECT ${source})
        target_link_libraries(${owner} PRIVATE taksavaihe_flags Qt6::Core)
        if(kind STREQUAL "widgets")
            target_link_libraries(${owner} PRIVATE Qt6::Widgets)
        elseif(kind STREQUAL "tests")
            target_link_libraries(${owner} PRIVATE taksavaihe_test_flags Qt6::Widgets GTest::gtest)
        endif()
        target_precompile_headers(${owner} PRIVATE ${pch_${kind}})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()
