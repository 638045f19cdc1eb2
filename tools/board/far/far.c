/*
 * What the panel's networks lead to, and what goes there from the panel.
 *
 *   far serve ADDRESS FILE   answers HTTP on port 80 as a check of connectivity wants it (204, RFC 9110), and
 *                            counts on port 9 (RFC 863) what arrives; FILE has a line "SENDER BYTES" for each
 *                            sender's address
 *   far send ADDRESS         sends without end; begins anew where nothing arrives any more
 */
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

enum { HTTP_PORT = 80, COUNT_PORT = 9 };
enum { SENDERS = 64, CONNECTIONS = 64 };
enum { PIECE = 1000, PAUSE_MS = 100, PATIENCE_MS = 3000 };

static const char ANSWER[] = "HTTP/1.1 204 No Content\r\nX-NetworkManager-Status: online\r\n"
                             "Content-Length: 0\r\nConnection: close\r\n\r\n";

struct sender {
    struct in_addr address;
    unsigned long long bytes;
};

static struct sender senders[SENDERS];
static struct pollfd sockets[2 + CONNECTIONS];
static int is_counted[2 + CONNECTIONS];
static nfds_t socket_count;

static void give_up(const char *what)
{
    perror(what);
    exit(1);
}

static struct sockaddr_in place(const char *address, int port)
{
    struct sockaddr_in found = {.sin_family = AF_INET, .sin_port = htons((uint16_t)port)};
    if (inet_pton(AF_INET, address, &found.sin_addr) != 1)
        give_up(address);
    return found;
}

static void listen_on(const char *address, int port)
{
    const struct sockaddr_in where = place(address, port);
    const int one = 1;
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    if (bind(fd, (const struct sockaddr *)&where, sizeof where) < 0 || listen(fd, CONNECTIONS) < 0)
        give_up("listen");
    sockets[socket_count++] = (struct pollfd){.fd = fd, .events = POLLIN};
}

static void welcome(int number)
{
    const int fd = accept4(sockets[number].fd, NULL, NULL, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (fd >= 0 && socket_count < sizeof sockets / sizeof *sockets) {
        is_counted[socket_count] = number == 1;
        sockets[socket_count++] = (struct pollfd){.fd = fd, .events = POLLIN};
    } else if (fd >= 0) {
        close(fd);
    }
}

static void dismiss(int number)
{
    close(sockets[number].fd);
    socket_count--;
    sockets[number] = sockets[socket_count];
    is_counted[number] = is_counted[socket_count];
}

static void write_counts(int file)
{
    char text[SENDERS * 48];
    char name[INET_ADDRSTRLEN];
    int length = 0;
    for (const struct sender *s = senders; s < senders + SENDERS && s->bytes > 0; s++) {
        inet_ntop(AF_INET, &s->address, name, sizeof name);
        length += sprintf(text + length, "%-15s %20llu\n", name, s->bytes);
    }
    if (pwrite(file, text, (size_t)length, 0) < 0)
        give_up("counts");
}

static void count(int fd, ssize_t bytes, int file)
{
    struct sockaddr_in who;
    socklen_t size = sizeof who;
    if (getpeername(fd, (struct sockaddr *)&who, &size) < 0)
        return;
    struct sender *s = senders;
    while (s < senders + SENDERS - 1 && s->bytes > 0 && s->address.s_addr != who.sin_addr.s_addr)
        s++;
    s->address = who.sin_addr;
    s->bytes += (unsigned long long)bytes;
    write_counts(file);
}

static void hear(int number, int file)
{
    char data[1 << 14];
    const int fd = sockets[number].fd;
    const ssize_t got = recv(fd, data, sizeof data, 0);
    if (got > 0 && is_counted[number])
        return count(fd, got, file);
    if (got > 0)
        send(fd, ANSWER, sizeof ANSWER - 1, MSG_NOSIGNAL);
    dismiss(number);
}

static _Noreturn void serve(const char *address, const char *path)
{
    const int file = open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        give_up(path);
    listen_on(address, HTTP_PORT);
    listen_on(address, COUNT_PORT);
    for (;;) {
        if (poll(sockets, socket_count, -1) < 0)
            give_up("poll");
        for (int i = (int)socket_count - 1; i > 1; i--)
            if (sockets[i].revents != 0)
                hear(i, file);
        for (int i = 0; i < 2; i++)
            if (sockets[i].revents != 0)
                welcome(i);
    }
}

static int connect_to(const struct sockaddr_in *where)
{
    const int patience = PATIENCE_MS;
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    struct pollfd wait = {.fd = fd, .events = POLLOUT};
    setsockopt(fd, IPPROTO_TCP, TCP_USER_TIMEOUT, &patience, sizeof patience);
    if (connect(fd, (const struct sockaddr *)where, sizeof *where) == 0 || errno == EINPROGRESS)
        if (poll(&wait, 1, PATIENCE_MS) == 1 && (wait.revents & (POLLERR | POLLHUP)) == 0)
            return fd;
    close(fd);
    return -1;
}

static _Noreturn void send_to(const char *address)
{
    static const char data[PIECE];
    const struct sockaddr_in where = place(address, COUNT_PORT);
    int fd = -1;
    for (;;) {
        if (fd < 0)
            fd = connect_to(&where);
        if (fd >= 0 && send(fd, data, sizeof data, MSG_NOSIGNAL) < 0 && errno != EAGAIN) {
            close(fd);
            fd = -1;
        }
        usleep(PAUSE_MS * 1000);
    }
}

int main(int words_count, char **words)
{
    if (words_count == 4 && strcmp(words[1], "serve") == 0)
        serve(words[2], words[3]);
    if (words_count == 3 && strcmp(words[1], "send") == 0)
        send_to(words[2]);
    fputs("usage: far serve ADDRESS FILE | far send ADDRESS\n", stderr);
    return 2;
}
