// SPDX-License-Identifier: Apache-2.0
// Where commands and the suite's folders are. No other source spells the path of a command.
#pragma once

#include <string>

namespace Zorvane {

/// The commands of the operating systems that the product knows, by absolute path.
inline constexpr char CMD_CHGRP[] = "/bin/chgrp";
inline constexpr char CMD_CHKCONFIG[] = "/sbin/chkconfig";
inline constexpr char CMD_CHMOD[] = "/bin/chmod";
inline constexpr char CMD_CHOWN[] = "/bin/chown";
inline constexpr char CMD_CHROOT[] = "/usr/sbin/chroot";
inline constexpr char CMD_CHROOT_USR_BIN[] = "/usr/bin/chroot";
inline constexpr char CMD_CP[] = "/bin/cp";
inline constexpr char CMD_CPIO[] = "/bin/cpio";
inline constexpr char CMD_DD[] = "/bin/dd";
inline constexpr char CMD_DEPMOD[] = "/sbin/depmod";
inline constexpr char CMD_DF[] = "/bin/df";
inline constexpr char CMD_DIRNAME[] = "/usr/bin/dirname";
inline constexpr char CMD_DU[] = "/usr/bin/du";
inline constexpr char CMD_ED[] = "/bin/ed";
inline constexpr char CMD_EGREP[] = "/bin/egrep";
inline constexpr char CMD_EJECT[] = "/usr/bin/eject";
inline constexpr char CMD_EJECT_BIN[] = "/bin/eject";
inline constexpr char CMD_EX[] = "/bin/ex";
inline constexpr char CMD_FSCK[] = "/sbin/fsck";
inline constexpr char CMD_GREP[] = "/bin/grep";
inline constexpr char CMD_GUNZIP[] = "/bin/gunzip";
inline constexpr char CMD_GZIP[] = "/bin/gzip";
inline constexpr char CMD_HEAD[] = "/usr/bin/head";
inline constexpr char CMD_ARCHITECTURE[] = "/bin/uname -m"; ///< a whole command line
inline constexpr char CMD_HOSTNAME[] = "/bin/hostname";
inline constexpr char CMD_IFCONFIG[] = "/sbin/ifconfig";
inline constexpr char CMD_KILL[] = "/usr/bin/kill";
inline constexpr char CMD_LN[] = "/bin/ln";
inline constexpr char CMD_LS[] = "/bin/ls";
inline constexpr char CMD_MKDIR[] = "/bin/mkdir";
inline constexpr char CMD_MKE2FS[] = "/sbin/mke2fs";
inline constexpr char CMD_MKFS[] = "/sbin/mkfs";
inline constexpr char CMD_MKTEMP[] = "/bin/mktemp";
inline constexpr char CMD_MOUNT[] = "/bin/mount";
inline constexpr char CMD_MV[] = "/bin/mv";
inline constexpr char CMD_AWK[] = "/usr/bin/awk";
inline constexpr char CMD_NETSTAT[] = "/bin/netstat";
inline constexpr char CMD_PAX[] = "/usr/bin/pax";
inline constexpr char CMD_PING[] = "/bin/ping";
inline constexpr char CMD_PS[] = "/bin/ps";
inline constexpr char CMD_RM[] = "/bin/rm";
inline constexpr char CMD_RMDIR[] = "/bin/rmdir";
inline constexpr char CMD_ROUTE[] = "/sbin/route";
inline constexpr char CMD_RPM[] = "/bin/rpm";
inline constexpr char CMD_RPM2CPIO[] = "/usr/bin/rpm2cpio";
inline constexpr char CMD_SED[] = "/bin/sed";
inline constexpr char CMD_SORT[] = "/bin/sort";
inline constexpr char CMD_STTY[] = "/bin/stty";
inline constexpr char CMD_SU[] = "/bin/su";
inline constexpr char CMD_TAR[] = "/bin/tar";
inline constexpr char CMD_TOUCH[] = "/usr/bin/touch";
inline constexpr char CMD_TR[] = "/usr/bin/tr";
inline constexpr char CMD_UMOUNT[] = "/bin/umount";
inline constexpr char CMD_VOLNAME[] = "/usr/bin/volname";
inline constexpr char CMD_QUASSIST[] = "/usr/sbin/quassist";
inline constexpr char CMD_QUDG[] = "/usr/sbin/qudg";
inline constexpr char CMD_COMPRESS[] = "/usr/bin/compress";
inline constexpr char CMD_DATE[] = "/bin/date";
inline constexpr char CMD_BDF[] = "/usr/bin/bdf";
inline constexpr char CMD_DIFF[] = "/usr/bin/diff";
inline constexpr char CMD_EXPORTFS[] = "/usr/sbin/exportfs";
inline constexpr char CMD_FIND[] = "/usr/bin/find";
inline constexpr char CMD_TPUT[] = "/usr/bin/tput";
inline constexpr char CMD_GROUPS[] = "/usr/bin/groups";
inline constexpr char CMD_ID[] = "/usr/bin/id";
inline constexpr char CMD_MORE[] = "/bin/more";
inline constexpr char CMD_SH[] = "/bin/sh";
inline constexpr char CMD_SUM[] = "/usr/bin/sum";
inline constexpr char CMD_TEE[] = "/usr/bin/tee";
inline constexpr char CMD_QCHSYS[] = "/opt/MRTHqcs/bin/qchsys";
inline constexpr char CMD_QCHRES[] = "/opt/MRTHqcs/bin/qchres";
inline constexpr char CMD_QCHGRP[] = "/opt/MRTHqcs/bin/qchgrp";
inline constexpr char CMD_QCHCLUS[] = "/opt/MRTHqcs/bin/qchclus";
inline constexpr char CMD_QCHCF[] = "/opt/MRTHqcs/bin/qchcf";
inline constexpr char CMD_QUPRINT[] = "/usr/sbin/quprint";
inline constexpr char CMD_QUDISK[] = "/usr/sbin/qudisk";
inline constexpr char CMD_MKFIFO[] = "/usr/bin/mkfifo";
inline constexpr char CMD_LSCFG[] = "/usr/sbin/lscfg";
inline constexpr char CMD_LSCONS[] = "/usr/sbin/lscons";
inline constexpr char CMD_LANSCAN[] = "/usr/sbin/lanscan";
inline constexpr char CMD_IOSCAN[] = "/sbin/ioscan";
inline constexpr char CMD_UNAME[] = "/bin/uname";
inline constexpr char CMD_CAT[] = "/bin/cat";
inline constexpr char CMD_CUT[] = "/usr/bin/cut";
inline constexpr char CMD_PWD[] = "/bin/pwd";
inline constexpr char CMD_STRINGS[] = "/usr/bin/strings";
inline constexpr char CMD_FILE[] = "/usr/bin/file";

/// The suite's own commands and data, below its install path as it was at the program's start.
extern const std::string CMD_ZORC;
extern const std::string CMD_MKISOFS;
extern const std::string CMD_ISOVOLSIZE;
extern const std::string CMD_ZORMKFS_SOL_QUVM;
extern const std::string CMD_KVNLIST;
extern const std::string CMD_KVNRESTORE;
extern const std::string CMD_KVNCLIMAGELIST;
extern const std::string CMD_KVNHOSTDBCMD;
extern const std::string FILE_TPP_CONFIG;

/// The suite's folders. Each result ends in "/".
std::string GetKvnInstallPath(); ///< with links resolved, or as configured if it doesn't exist
std::string GetKvnBinPath();     ///< also the bin folder of this system
std::string GetZorInstallPath();
std::string GetZorServerPath();
std::string GetZorClientPath();
std::string GetZorServerDataPath();
std::string GetZorClientDataPath();
std::string GetGlobalVarPath();
std::string GetSharePath();

} // namespace Zorvane
