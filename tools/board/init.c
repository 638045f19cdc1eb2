/*
 * The virtual board's first process, and its boot loader: loads the modules of its initrd in the order
 * of their names, chooses one of the two slots, mounts its root file system, and goes on as the
 * /sbin/init there. /run/slot tells the system which slot it is.
 *
 * What it chooses by is on a disk of its own, four digits and letters as in "BA29": the order of the
 * slots, then of A and of B how often they may still be tried. 0: not at all. 9: it has proved itself,
 * and is not counted. guest/usr/libexec/board-slots is the system's side of it. A disk writes the four of
 * them whole; a memory that does not needs two copies and a checksum.
 */
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

enum { WAIT_MS = 5000, PROVED = '9' };

static const char CHOICE[] = "/dev/vdd";

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

static void wait_for(const char *device)
{
    for (int ms = 0; ms < WAIT_MS && access(device, F_OK) != 0; ms += 10)
        usleep(10000);
}

/* The slot to start, one of its tries less. The first one if both have none left, or nothing is known. */
static char choose_slot(void)
{
    char choice[5] = "";
    wait_for(CHOICE);
    const int fd = open(CHOICE, O_RDWR | O_SYNC | O_CLOEXEC);
    if (read(fd, choice, 4) != 4 || (strncmp(choice, "AB", 2) != 0 && strncmp(choice, "BA", 2) != 0))
        return 'A';
    char *tries = choice + 2;
    for (int i = 0; i < 2; i++) {
        char *left = &tries[choice[i] - 'A'];
        if (*left < '1' || *left > '9')
            continue;
        if (*left != PROVED) {
            --*left;
            if (pwrite(fd, choice, 4, 0) != 4)
                perror(CHOICE);
        }
        close(fd);
        return choice[i];
    }
    close(fd);
    return choice[0];
}

static int mount_slot(char slot)
{
    const char *device = slot == 'A' ? "/dev/vda" : "/dev/vdc";
    wait_for(device);
    return mount(device, "/root", "ext4", 0, NULL);
}

/* The slot that is mounted: the other one if the chosen one is no file system. 0 for none. */
static char mount_root(char slot)
{
    const char other = slot == 'A' ? 'B' : 'A';
    return mount_slot(slot) == 0 ? slot : mount_slot(other) == 0 ? other : 0;
}

static void tell_slot(char slot)
{
    mount("run", "/root/run", "tmpfs", MS_NODEV | MS_NOSUID, "mode=755");
    FILE *file = fopen("/root/run/slot", "w");
    if (file == NULL || fprintf(file, "SLOT=%c\n", slot) < 0)
        perror("/run/slot");
    if (file != NULL)
        fclose(file);
}

int main(void)
{
    mkdir("/proc", 0755);
    mkdir("/dev", 0755);
    mkdir("/root", 0755);
    mount("proc", "/proc", "proc", 0, NULL);
    mount("dev", "/dev", "devtmpfs", 0, NULL);
    load_all();
    const char slot = mount_root(choose_slot());
    if (slot == 0)
        return failed("root file system");
    tell_slot(slot);
    mount("/dev", "/root/dev", NULL, MS_MOVE, NULL);
    umount2("/proc", MNT_DETACH);
    if (chdir("/root") != 0 || mount(".", "/", NULL, MS_MOVE, NULL) != 0 || chroot(".") != 0)
        return failed("new root");
    execl("/sbin/init", "/sbin/init", (char *)NULL);
    return failed("/sbin/init");
}
