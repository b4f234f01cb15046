// A host without an application object.

#include "message_box_host.h"

int main(int argc, char** argv)
{
    return MessageBoxHost(argc, argv).ask();
}
