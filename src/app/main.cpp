#include "app/startup.h"

int main(int argc, char** argv)
{
    return startup::run(argc, argv);
}
