// The command export: a C program that makes one draw.
#include "command.h"

#include "program.h"

#include <cstdio>

namespace replay {

using namespace capture;
using Step = Player::Step;

int runExport(const Arguments &arguments)
{
    const Opened opened(arguments.words[0]);
    const uint64_t wanted = numberOf(arguments.words[1], "the number of the draw", 1, UINT64_MAX);
    const std::string path = arguments.text("out", "draw-" + std::to_string(wanted) + ".c");
    keep(opened.path, path);
    Player &player = *opened.player;
    Progress progress("export", *opened.reader);
    for (Step step; (step = player.next()) != Step::end;) {
        progress.show(player);
        if (step == Step::frame)
            continue;
        const bool isIt = player.draw().number == wanted;
        if (!player.prepare(arguments.has("unchecked"))) {
            if (isIt)
                fail(statusFound, drawLabel(player.draw()) + " cannot be made: " + player.refusal());
            continue;
        }
        if (!isIt) {
            player.make(Library::linked());
            player.finish();
            continue;
        }
        if (player.footprint().pixels.empty())
            fail(statusFound, drawLabel(player.draw()) + " reaches no pixel");
        std::FILE *const out = std::fopen(path.c_str(), "w");
        if (!out)
            fail(statusFile, "cannot write " + path);
        const std::string differences = writeProgram(out, player, opened.path);
        player.finish();
        const bool bad = std::ferror(out) != 0;
        if (std::fclose(out) != 0 || bad)
            fail(statusFile, "cannot write all of " + path);
        std::printf("%s: %s\n", path.c_str(), drawLabel(player.draw()).c_str());
        if (!differences.empty())
            std::printf("The draw is not as recorded (%s): the program compares with the result of this program's library.\n",
                        differences.c_str());
        return differences.empty() ? statusGood : statusFound;
    }
    return opened.complaintOfNone(wanted);
}

} // namespace replay
