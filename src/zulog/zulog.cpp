// The program that reads logs.

#include "zulog/zlCommands.h"
#include "zulog/zlPlatform.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    Zu::ZlPlatform::prepare();
    const char* const noColour = std::getenv("NO_COLOR");
    Zu::ZlSurroundings surroundings;
    surroundings._isOutputTerminal = Zu::ZlPlatform::isTerminal(stdout);
    surroundings._isColourRefused = noColour && *noColour != '\0';
    surroundings._now = Zu::ZlPlatform::getNow();
    return Zu::zlRunCommand(
        Zu::zlReadCommandLine(Zu::ZlPlatform::getWords(argc, argv), surroundings));
}
