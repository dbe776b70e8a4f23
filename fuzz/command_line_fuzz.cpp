// Any words as a command line: of zavdb (parsed, not run), and as the program's parameters. One
// word per line.

#include <QCoreApplication>

#include "company/aliases.h"
#include "fuzz/fuzz.h"
#include "platform/command_line.h"
#include "tools/zavdb/command.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static int argc = 1;
    static char name[] = "zavdb";
    static char* argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static const std::vector<tools::Command> commands = tools::allCommands();

    const QStringList words = inputText(data, size).split(u'\n');
    try {
        const tools::Invocation asked = tools::parseCommandLine(commands, words);
        require((asked.command == nullptr) == !asked.answer.isEmpty());
        if (asked.command != nullptr) {
            require(asked.arguments.count() >= asked.command->minArguments &&
                    asked.arguments.count() <= asked.command->maxArguments);
            for (const QStringList& values : asked.arguments.options)
                require(!values.isEmpty());
        }
    } catch (const tools::UsageError& error) {
        require(!error.message().isEmpty());
    }

    platform::setParameters(words);
    for (const QString& word : words) {
        require(platform::hasSwitch(word));
        require(!platform::hasSwitchAfterFirst(word) || words.size() > 1);
        // an accepted name is a single path component
        if (company::aliasNameProblem(word).isEmpty())
            require(!word.isEmpty() && !word.contains(u'/') && !word.contains(u'\\') &&
                    word != QLatin1String("..") && !word.startsWith(u'-'));
    }
    return 0;
}
