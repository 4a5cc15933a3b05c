# The Debian package (cpack, or `make package`): build/velmora_<version>_<arch>.deb.
# Library dependencies come from dpkg-shlibdeps; the programs the tools run are listed.
if(APPLE)
  return()
endif()
set(VELMORA_PACKAGE_MAINTAINER "Velmora <packages@velmora.app>" CACHE STRING "Maintainer field of the Debian package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velmora)
set(CPACK_PACKAGE_VENDOR Velmora)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${VELMORA_PACKAGE_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://www.velmora.app/)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# mkfs and the label tools of each file system, blkid and wipefs, mount and umount; pkexec
# for the administrator prompt. util-linux is essential, so lintian wants it versioned.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "dosfstools, exfatprogs, e2fsprogs, util-linux (>= 2.38), mount, pkexec | policykit-1")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, fusefat, exfat-fuse")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "erase files, free space and whole drives beyond recovery")
# The summary above is the synopsis; this is the extended text (an empty line: a new paragraph).
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Velmora Data Eraser overwrites files and folders with 1, 2, 3, 7 or 35 passes
before it removes them, erases the free space of a volume or a whole drive,
formats, renames and ejects volumes, uninstalls applications with the files
they leave behind, cleans the traces of web browsers, finds duplicate files,
copies drives and keeps a history of every erasure with an HTML report.

The desktop application is velmora; velmora-cli offers the same functions in
a terminal and in scripts.")
include(CPack)
