// The system partition while files are installed.
#pragma once

// Makes the partition writable; it is read-only again when the last object has gone. Any thread.
class WritablePartition
{
public:
    WritablePartition();
    ~WritablePartition();
    WritablePartition(const WritablePartition &) = delete;
    WritablePartition &operator=(const WritablePartition &) = delete;
};
