// peak FILE PROGRAM [ARGUMENT...]: runs a program, and writes the peak of its memory in bytes to the file. What a
// process has before it becomes another program counts as that program's, so that whoever starts it has to be as small
// as this.

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc < 3)
        return 2;
    const pid_t child = fork();
    if (child == 0) {
        execv(argv[2], argv + 2);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
        return 127;
    std::FILE* const file = std::fopen(argv[1], "w");
    if (!file || std::fprintf(file, "%ld\n", usage.ru_maxrss * 1024) < 0 || std::fclose(file) != 0)
        return 127;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 127;
}
