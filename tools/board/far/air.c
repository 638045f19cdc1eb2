/*
 * The air between the radios of mac80211_hwsim: carries their frames, and gives each station its level.
 *
 *   air medium FILE        carries frames; SIGHUP reads the file again
 *   air plug NAME ADDRESS  makes a radio; one that is not the panel's has no interface yet
 *   air pull NAME          removes it
 *
 * A radio's number is the fifth byte of its address, and of its stations' addresses. Number 0 is the
 * panel's; the stations of the others hear the panel and not each other. FILE has a line for a station:
 *
 *   ADDRESS LEVEL                         in dBm; below OUT_OF_REACH it is not heard and hears nothing
 *   ADDRESS LEVEL CHANNEL SECURITY NAME   one that only tells its name, in hexadecimal digits; security
 *                                         is open, psk or eap
 *
 * Netlink commands and attributes are those of drivers/net/wireless/mac80211_hwsim.h in Linux 6.1.
 */
#include <errno.h>
#include <linux/genetlink.h>
#include <linux/netlink.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>

enum { REGISTER = 1, FRAME, TX_INFO, NEW_RADIO, DEL_RADIO };
enum {
    RECEIVER = 1,
    TRANSMITTER = 2,
    FRAME_DATA = 3,
    FLAGS = 4,
    RX_RATE = 5,
    SIGNAL = 6,
    TX_RATES = 7,
    COOKIE = 8,
    REG_CUSTOM = 12,
    RADIO_NAME = 17,
    NO_INTERFACE = 18,
    FREQUENCY = 19,
    ADDRESS = 22,
    ATTRIBUTES = 32
};
enum { NO_ACK = 2, ACKNOWLEDGED = 4 };
enum { PROBE_REQUEST = 0x40, BEACON = 0x80 };

enum { STATIONS = 512, BEACON_SIZE = 512, RADIOS = 8, OUT_OF_REACH = -100, USUAL_LEVEL = -50 };

/* Of hwsim's own rules for radio, those with 11 + 5 channels that may all be probed: a scan of them takes
   a second, of all 40 it takes five. */
enum { FEW_CHANNELS = 0 };

/* A frame: control, duration, receiver, transmitter, network, sequence; then what a beacon has. */
enum { TO = 4, FROM = 10, HEADER = 24, ELEMENTS = HEADER + 12 };

struct station {
    uint8_t address[6];
    int level;
    int length;
    uint32_t frequency;
    uint8_t beacon[BEACON_SIZE];
};

struct frame {
    const uint8_t *radio;
    const uint8_t *data;
    int length;
    uint32_t flags;
    uint32_t frequency;
    const struct nlattr *cookie;
    const struct nlattr *rates;
};

static struct station stations[STATIONS];
static int station_count;
static volatile sig_atomic_t is_stale;

static int line = -1;
static uint16_t family;
static char out[1 << 16];
static size_t out_length;
static struct nlmsghdr *message;

static void give_up(const char *what)
{
    perror(what);
    exit(1);
}

/* Messages are collected, and sent together. */

static void flush(void)
{
    if (out_length > 0 && send(line, out, out_length, 0) < 0)
        perror("send");
    out_length = 0;
}

static void begin(uint16_t type, uint8_t command, uint16_t flags)
{
    if (out_length + 4096 > sizeof out)
        flush();
    message = (struct nlmsghdr *)(out + out_length);
    memset(message, 0, NLMSG_LENGTH(GENL_HDRLEN));
    message->nlmsg_len = NLMSG_LENGTH(GENL_HDRLEN);
    message->nlmsg_type = type;
    message->nlmsg_flags = (uint16_t)(NLM_F_REQUEST | flags);
    struct genlmsghdr *head = NLMSG_DATA(message);
    head->cmd = command;
    head->version = 1;
}

static void put(uint16_t type, const void *data, int length)
{
    struct nlattr *attribute = (struct nlattr *)((char *)message + message->nlmsg_len);
    memset(attribute, 0, (size_t)NLA_ALIGN(NLA_HDRLEN + length));
    attribute->nla_type = type;
    attribute->nla_len = (uint16_t)(NLA_HDRLEN + length);
    if (length > 0)
        memcpy((char *)attribute + NLA_HDRLEN, data, (size_t)length);
    message->nlmsg_len += (uint32_t)NLA_ALIGN(attribute->nla_len);
}

static void put_number(uint16_t type, int64_t value)
{
    const uint32_t number = (uint32_t)value;
    put(type, &number, sizeof number);
}

static void end(void)
{
    out_length += NLMSG_ALIGN(message->nlmsg_len);
}

static const void *content(const struct nlattr *attribute)
{
    return (const char *)attribute + NLA_HDRLEN;
}

static uint32_t number_in(const struct nlattr *attribute)
{
    uint32_t number = 0;
    if (attribute != NULL)
        memcpy(&number, content(attribute), sizeof number);
    return number;
}

static void split(const struct nlmsghdr *received, const struct nlattr *found[ATTRIBUTES])
{
    memset(found, 0, ATTRIBUTES * sizeof *found);
    const char *at = (const char *)NLMSG_DATA(received) + GENL_HDRLEN;
    const char *after = (const char *)received + received->nlmsg_len;
    while (at + NLA_HDRLEN <= after) {
        const struct nlattr *attribute = (const struct nlattr *)at;
        const int type = attribute->nla_type & NLA_TYPE_MASK;
        if (attribute->nla_len < NLA_HDRLEN || at + attribute->nla_len > after)
            return;
        if (type < ATTRIBUTES)
            found[type] = attribute;
        at += NLA_ALIGN(attribute->nla_len);
    }
}

/* The first answer; errors end the program. */
static const struct nlmsghdr *answer(void)
{
    static char in[1 << 14];
    flush();
    const ssize_t got = recv(line, in, sizeof in, 0);
    const struct nlmsghdr *received = (const struct nlmsghdr *)in;
    if (got < (ssize_t)sizeof *received)
        give_up("recv");
    if (received->nlmsg_type == NLMSG_ERROR) {
        const int error = ((const struct nlmsgerr *)NLMSG_DATA(received))->error;
        errno = -error;
        if (error < 0)
            give_up("mac80211_hwsim");
    }
    return received;
}

static void connect_to_radios(void)
{
    const struct sockaddr_nl me = {.nl_family = AF_NETLINK};
    const int size = 4 << 20;
    line = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_GENERIC);
    if (line < 0 || bind(line, (const struct sockaddr *)&me, sizeof me) < 0)
        give_up("netlink");
    setsockopt(line, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size);
    begin(GENL_ID_CTRL, CTRL_CMD_GETFAMILY, 0);
    put(CTRL_ATTR_FAMILY_NAME, "MAC80211_HWSIM", sizeof "MAC80211_HWSIM");
    end();
    const struct nlattr *found[ATTRIBUTES];
    split(answer(), found);
    memcpy(&family, content(found[CTRL_ATTR_FAMILY_ID]), sizeof family);
}

/* Stations. */

static int level_of(const struct station *station)
{
    return station == NULL ? USUAL_LEVEL : station->level;
}

static int is_in_reach(const struct station *station)
{
    return level_of(station) >= OUT_OF_REACH;
}

static struct station *find(const uint8_t *address)
{
    for (int i = 0; i < station_count; i++)
        if (memcmp(stations[i].address, address, 6) == 0)
            return &stations[i];
    return NULL;
}

static struct station *find_or_add(const uint8_t *address)
{
    struct station *station = find(address);
    if (station == NULL && station_count < STATIONS) {
        station = &stations[station_count++];
        memset(station, 0, sizeof *station);
        memcpy(station->address, address, 6);
        station->level = USUAL_LEVEL;
    }
    return station;
}

static int hex_bytes(const char *text, uint8_t *bytes, int most)
{
    int count = 0;
    unsigned value;
    while (count < most && sscanf(text + 2 * count, "%2x", &value) == 1)
        bytes[count++] = (uint8_t)value;
    return count;
}

static int add_element(struct station *station, uint8_t kind, const void *data, int length)
{
    uint8_t *at = station->beacon + station->length;
    at[0] = kind;
    at[1] = (uint8_t)length;
    memcpy(at + 2, data, (size_t)length);
    return station->length += 2 + length;
}

/* A beacon (IEEE 802.11, 9.3.3.2) with the elements that a list of networks is made of. */
static void make_beacon(struct station *station, int channel, const char *security, const char *name)
{
    static const uint8_t rates[] = {0x82, 0x84, 0x8b, 0x96, 0x0c, 0x12, 0x18, 0x24};
    uint8_t rsn[] = {1, 0, 0, 0x0f, 0xac, 4, 1, 0, 0, 0x0f, 0xac, 4, 1, 0, 0, 0x0f, 0xac, 2, 0, 0};
    const int is_open = strcmp(security, "open") == 0;
    const uint8_t number = (uint8_t)channel;
    uint8_t bytes[32];

    memset(station->beacon, 0, ELEMENTS);
    station->beacon[0] = BEACON;
    memset(station->beacon + TO, 0xff, 6);
    memcpy(station->beacon + FROM, station->address, 6);
    memcpy(station->beacon + FROM + 6, station->address, 6);
    station->beacon[HEADER + 8] = 100;
    station->beacon[HEADER + 10] = is_open ? 0x01 : 0x11;
    station->length = ELEMENTS;
    station->frequency = (uint32_t)(2407 + 5 * channel);
    add_element(station, 0, bytes, hex_bytes(name, bytes, sizeof bytes));
    add_element(station, 1, rates, sizeof rates);
    add_element(station, 3, &number, 1);
    if (strcmp(security, "eap") == 0)
        rsn[17] = 1;
    if (!is_open)
        add_element(station, 48, rsn, sizeof rsn);
}

static void read_station(const char *text)
{
    unsigned b[6];
    uint8_t address[6];
    int level, channel;
    char security[8], name[80];
    const int got = sscanf(text, "%x:%x:%x:%x:%x:%x %d %d %7s %79s", b, b + 1, b + 2, b + 3, b + 4, b + 5,
                           &level, &channel, security, name);
    for (int i = 0; i < 6; i++)
        address[i] = (uint8_t)b[i];
    struct station *station = got < 7 ? NULL : find_or_add(address);
    if (station == NULL)
        return;
    station->level = level;
    if (got == 10)
        make_beacon(station, channel, security, name);
}

static void read_stations(const char *path)
{
    char text[256];
    FILE *file = fopen(path, "r");
    if (file == NULL)
        return;
    for (int i = 0; i < station_count; i++)
        stations[i].level = OUT_OF_REACH - 1;
    while (fgets(text, sizeof text, file) != NULL)
        read_station(text);
    fclose(file);
}

/* Frames. */

static void carry(int radio, const uint8_t *data, int length, uint32_t frequency, int level)
{
    const uint8_t address[6] = {2, 0, 0, 0, (uint8_t)radio, 0};
    begin(family, FRAME, 0);
    put(RECEIVER, address, sizeof address);
    put(FRAME_DATA, data, length);
    put_number(RX_RATE, 0);
    put_number(SIGNAL, level);
    put_number(FREQUENCY, frequency);
    end();
}

/* Answers for all stations of the channel at once: an emulated board's access points would not be done
   before the panel listens to the next channel. */
static void tell_names(uint32_t frequency)
{
    for (const struct station *s = stations; s < stations + station_count; s++)
        if (s->length > 0 && s->frequency == frequency && is_in_reach(s))
            carry(0, s->beacon, s->length, frequency, s->level);
}

static int carry_from_panel(const struct frame *frame)
{
    const uint8_t *to = frame->data + TO;
    const struct station *station = find(to);
    if (to[0] & 1) {
        for (int radio = 1; radio < RADIOS; radio++)
            carry(radio, frame->data, frame->length, frame->frequency, USUAL_LEVEL);
        if (frame->data[0] == PROBE_REQUEST)
            tell_names(frame->frequency);
        return 1;
    }
    if (station == NULL || !is_in_reach(station))
        return 0;
    carry(to[4], frame->data, frame->length, frame->frequency, station->level);
    return 1;
}

static int carry_to_panel(const struct frame *frame)
{
    struct station *station = find_or_add(frame->data + FROM);
    if (station != NULL && frame->data[0] == BEACON && frame->length <= BEACON_SIZE) {
        memcpy(station->beacon, frame->data, (size_t)frame->length);
        station->length = frame->length;
        station->frequency = frame->frequency;
    }
    if (!is_in_reach(station))
        return 0;
    carry(0, frame->data, frame->length, frame->frequency, level_of(station));
    return 1;
}

static void report(const struct frame *frame, int is_carried)
{
    const int wants_none = (frame->data[TO] & 1) || (frame->flags & NO_ACK);
    begin(family, TX_INFO, 0);
    put(TRANSMITTER, frame->radio, 6);
    put_number(FLAGS, frame->flags | (is_carried && !wants_none ? ACKNOWLEDGED : 0));
    put(COOKIE, content(frame->cookie), 8);
    put_number(SIGNAL, USUAL_LEVEL);
    if (frame->rates != NULL)
        put(TX_RATES, content(frame->rates), frame->rates->nla_len - NLA_HDRLEN);
    end();
}

static void take(const struct nlmsghdr *received)
{
    const struct nlattr *found[ATTRIBUTES];
    split(received, found);
    if (found[TRANSMITTER] == NULL || found[FRAME_DATA] == NULL)
        return;
    const struct frame frame = {.radio = content(found[TRANSMITTER]),
                                .data = content(found[FRAME_DATA]),
                                .length = found[FRAME_DATA]->nla_len - NLA_HDRLEN,
                                .flags = number_in(found[FLAGS]),
                                .frequency = number_in(found[FREQUENCY]),
                                .cookie = found[COOKIE],
                                .rates = found[TX_RATES]};
    if (frame.length < FROM + 6)
        return;
    const int is_carried = frame.radio[4] == 0 ? carry_from_panel(&frame) : carry_to_panel(&frame);
    if (frame.cookie != NULL)
        report(&frame, is_carried);
}

static void take_all(const char *in, int length)
{
    for (const struct nlmsghdr *received = (const struct nlmsghdr *)in; NLMSG_OK(received, (unsigned)length);
         received = NLMSG_NEXT(received, length))
        if (received->nlmsg_type == family && ((const struct genlmsghdr *)NLMSG_DATA(received))->cmd == FRAME)
            take(received);
    flush();
}

static void make_stale(int number)
{
    (void)number;
    is_stale = 1;
}

static _Noreturn void medium(const char *path)
{
    static char in[1 << 16];
    const struct sigaction change = {.sa_handler = make_stale};
    sigaction(SIGHUP, &change, NULL);
    is_stale = 1;
    begin(family, REGISTER, 0);
    end();
    flush();
    for (;;) {
        if (is_stale) {
            is_stale = 0;
            read_stations(path);
        }
        const ssize_t got = recv(line, in, sizeof in, 0);
        if (got > 0)
            take_all(in, (int)got);
        else if (got < 0 && errno != EINTR && errno != ENOBUFS)
            give_up("recv");
    }
}

static int plug(const char *name, const char *address)
{
    unsigned b[6];
    uint8_t bytes[6];
    if (sscanf(address, "%x:%x:%x:%x:%x:%x", b, b + 1, b + 2, b + 3, b + 4, b + 5) != 6)
        return 2;
    for (int i = 0; i < 6; i++)
        bytes[i] = (uint8_t)b[i];
    begin(family, NEW_RADIO, NLM_F_ACK);
    put(RADIO_NAME, name, (int)strlen(name));
    put(ADDRESS, bytes, sizeof bytes);
    put_number(REG_CUSTOM, FEW_CHANNELS);
    if (bytes[4] != 0)
        put(NO_INTERFACE, NULL, 0);
    end();
    answer();
    return 0;
}

static int pull(const char *name)
{
    begin(family, DEL_RADIO, NLM_F_ACK);
    put(RADIO_NAME, name, (int)strlen(name));
    end();
    answer();
    return 0;
}

int main(int count, char **words)
{
    const char *verb = count > 2 ? words[1] : "";
    connect_to_radios();
    if (strcmp(verb, "medium") == 0)
        medium(words[2]);
    if (strcmp(verb, "plug") == 0 && count == 4)
        return plug(words[2], words[3]);
    if (strcmp(verb, "pull") == 0)
        return pull(words[2]);
    fputs("usage: air medium FILE | air plug NAME ADDRESS | air pull NAME\n", stderr);
    return 2;
}
