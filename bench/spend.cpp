// spend PROGRAM [ARGUMENT...] runs a program without its output, and prints the seconds that it took, the
// processor seconds of all its threads, and the most memory that it held, in MB.

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

static double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_RDWR);
        for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
            dup2(nothing, stream);
        execvp(argv[1], argv + 1);
        _exit(127);
    }
    int status = 0;
    rusage used{};
    if (child < 0 || wait4(child, &status, 0, &used) != child || status != 0) {
        fprintf(stderr, "%s failed\n", argv[1]);
        return 1;
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    printf("%.4f %.4f %.1f\n", wall.count(), seconds(used.ru_utime) + seconds(used.ru_stime),
           static_cast<double>(used.ru_maxrss) / 1024);
}
