#pragma once

// What is used of <libproc.h>, also where the declarations at hand have only the rest of it.

#if __has_include(<sys/proc_info.h>)
#include <libproc.h>
#include <sys/proc.h>
#else
#include <cstdint>
#include <sys/types.h>

#define PROC_PIDTBSDINFO 3
#define SZOMB 5

struct proc_bsdinfo {
    std::uint32_t pbi_flags, pbi_status, pbi_xstatus, pbi_pid, pbi_ppid;
    uid_t pbi_uid;
    gid_t pbi_gid;
    uid_t pbi_ruid;
    gid_t pbi_rgid;
    uid_t pbi_svuid;
    gid_t pbi_svgid;
    std::uint32_t rfu_1;
    char pbi_comm[16];
    char pbi_name[32];
    std::uint32_t pbi_nfiles, pbi_pgid, pbi_pjobc, e_tdev, e_tpgid;
    std::int32_t pbi_nice;
    std::uint64_t pbi_start_tvsec, pbi_start_tvusec;
};

extern "C" int proc_pidinfo(int pid, int flavor, std::uint64_t argument, void* buffer, int size);
extern "C" int proc_listchildpids(pid_t parent, void* buffer, int size);
#endif
