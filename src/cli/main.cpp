#include <cstdio>

int main()
{
    std::fprintf(stderr, "usage: krldv COMMAND [ARGS]\n");
    return 2;
}
