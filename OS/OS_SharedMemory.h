// System V shared memory named by a key file under /tmp; null until Init.
#ifndef OS_SHAREDMEMORY_H
#define OS_SHAREDMEMORY_H

struct OS_SharedMemoryRecord {
    int nId;
    void* pAddr;  // null while detached
    int nSize;
};

class OS_SharedMemory {
public:
    OS_SharedMemory();
    // Frees the record without detaching; the segment outlives the object.
    ~OS_SharedMemory();
    OS_SharedMemory(const OS_SharedMemory&) = delete;
    OS_SharedMemory& operator=(const OS_SharedMemory&) = delete;

    // Processes that pass the same name and size share one segment.
    int Init(char* name, int size);
    int Attach();
    void Detach();
    void* Data();

private:
    OS_SharedMemoryRecord* m_pShm;
};

#endif
