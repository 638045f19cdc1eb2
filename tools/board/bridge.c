/*
 * Carries requests of the developer's program over a serial line of the board: each line that
 * arrives at the port goes to the program's socket, and the line that it answers goes back.
 *
 *   bridge PORT SOCKET
 *
 * A connection a request: the program may be restarted in between. While it does not answer, this
 * does, in the same form.
 */
#include <fcntl.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

enum { REQUEST_SIZE = 1 << 16, ANSWER_TIMEOUT_MS = 30000 };

static const char NOBODY[] = "{\"ok\":false,\"error\":\"no program answers\"}\n";

static void give_up(const char *what)
{
    perror(what);
    exit(1);
}

static void write_all(int fd, const char *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = write(fd, bytes, count);
        if (written <= 0)
            give_up("write");
        bytes += written;
        count -= (size_t)written;
    }
}

/* Reads one line, with its end. Waits while nobody is at the port's other end. */
static size_t read_request(int port, char *line)
{
    size_t length = 0;
    while (length < REQUEST_SIZE) {
        const ssize_t got = read(port, line + length, 1);
        if (got < 0)
            give_up("read");
        if (got == 0)
            usleep(20000);
        else if (line[length++] == '\n')
            return length;
    }
    give_up("request too long");
    return 0;
}

static int connect_to(const char *path)
{
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, (const struct sockaddr *)&address, sizeof address) == 0)
        return fd;
    close(fd);
    return -1;
}

/* Passes the answer on as it comes; returns whether it was whole. */
static int pass_answer(int program, int port, int *passed)
{
    char part[4096];
    struct pollfd wait = {.fd = program, .events = POLLIN};
    while (poll(&wait, 1, ANSWER_TIMEOUT_MS) > 0) {
        const ssize_t got = read(program, part, sizeof part);
        if (got <= 0)
            return 0;
        write_all(port, part, (size_t)got);
        *passed = 1;
        if (part[got - 1] == '\n')
            return 1;
    }
    return 0;
}

static void serve(int port, const char *path, const char *line, size_t length)
{
    int passed = 0;
    const int program = connect_to(path);
    const int whole = program >= 0 && send(program, line, length, MSG_NOSIGNAL) == (ssize_t)length &&
                      pass_answer(program, port, &passed);
    close(program);
    if (!whole && passed)
        write_all(port, "\n", 1);
    else if (!whole)
        write_all(port, NOBODY, sizeof NOBODY - 1);
}

int main(int argc, char **argv)
{
    static char line[REQUEST_SIZE];
    if (argc != 3) {
        fputs("usage: bridge PORT SOCKET\n", stderr);
        return 2;
    }
    const int port = open(argv[1], O_RDWR | O_CLOEXEC);
    if (port < 0)
        give_up(argv[1]);
    for (;;) {
        const size_t length = read_request(port, line);
        serve(port, argv[2], line, length);
    }
}
