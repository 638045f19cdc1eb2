/*
 * The virtual board's first process: loads the modules of its initrd in the order of their names,
 * mounts the root file system that the kernel's command line names (root=, "ro" as a word of its
 * own for read-only), and goes on as its /sbin/init.
 */
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

enum { WAIT_MS = 5000 };

static int failed(const char *what)
{
    perror(what);
    sleep(3);
    return 1;
}

static void load(const char *name)
{
    char path[300];
    snprintf(path, sizeof path, "/modules/%s", name);
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (syscall(SYS_finit_module, fd, "", 0) != 0)
        perror(path);
    close(fd);
}

static void load_all(void)
{
    struct dirent **entries;
    const int count = scandir("/modules", &entries, NULL, alphasort);
    for (int i = 0; i < count; i++)
        if (entries[i]->d_name[0] != '.')
            load(entries[i]->d_name);
}

static void read_command_line(char *line, size_t size)
{
    const int fd = open("/proc/cmdline", O_RDONLY | O_CLOEXEC);
    const ssize_t length = read(fd, line, size - 1);
    line[length > 0 ? length : 0] = '\0';
    close(fd);
}

static int mount_root(char *line)
{
    const char *device = "/dev/vda";
    unsigned long flags = 0;
    for (char *word = strtok(line, " \n"); word != NULL; word = strtok(NULL, " \n")) {
        if (strncmp(word, "root=", 5) == 0)
            device = word + 5;
        else if (strcmp(word, "ro") == 0)
            flags = MS_RDONLY;
    }
    for (int ms = 0; ms < WAIT_MS && access(device, F_OK) != 0; ms += 10)
        usleep(10000);
    return mount(device, "/root", "ext4", flags, NULL);
}

int main(void)
{
    char line[4096];
    mkdir("/proc", 0755);
    mkdir("/dev", 0755);
    mkdir("/root", 0755);
    mount("proc", "/proc", "proc", 0, NULL);
    mount("dev", "/dev", "devtmpfs", 0, NULL);
    read_command_line(line, sizeof line);
    load_all();
    if (mount_root(line) != 0)
        return failed("root file system");
    mount("/dev", "/root/dev", NULL, MS_MOVE, NULL);
    umount2("/proc", MNT_DETACH);
    if (chdir("/root") != 0 || mount(".", "/", NULL, MS_MOVE, NULL) != 0 || chroot(".") != 0)
        return failed("new root");
    execl("/sbin/init", "/sbin/init", (char *)NULL);
    return failed("/sbin/init");
}
