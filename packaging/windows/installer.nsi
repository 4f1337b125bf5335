; Installs the folder that packaging/windows/package has filled, with an entry in the Start menu and
; an uninstaller, which removes just what was installed. Silent with /S; another folder with /D=.
;   VERSION  of the programs
;   FOLDER   what is installed
;   ICON     of the installer
;   OUTPUT   the installer
Unicode true
Target amd64-unicode
Name "HtsAnnualizer ${VERSION}"
OutFile "${OUTPUT}"
Icon "${ICON}"
UninstallIcon "${ICON}"
SetCompressor /SOLID lzma
RequestExecutionLevel admin
InstallDir "$PROGRAMFILES64\HtsAnnualizer"
; An update goes where the program is.
InstallDirRegKey HKLM "Software\HtsAnnualizer" "Folder"
LicenseData "${FOLDER}/LICENSE.txt"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\HtsAnnualizer"

Page license
Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Function .onInit
    SetRegView 64
    SetShellVarContext all
FunctionEnd

Function un.onInit
    SetRegView 64
    SetShellVarContext all
FunctionEnd

Section
    SetOutPath "$INSTDIR"
    File /r "${FOLDER}/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\HtsAnnualizer.lnk" "$INSTDIR\HtsAnnualizer.exe"
    WriteRegStr HKLM "Software\HtsAnnualizer" "Folder" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "HtsAnnualizer"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\HtsAnnualizer.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "The HtsAnnualizer developers"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

Section "Uninstall"
    Delete "$SMPROGRAMS\HtsAnnualizer.lnk"
    Delete "$INSTDIR\HtsAnnualizer.exe"
    Delete "$INSTDIR\htstool.exe"
    Delete "$INSTDIR\LICENSE.txt"
    Delete "$INSTDIR\Help\HtsAnnualizerHelp.html"
    Delete "$INSTDIR\examples\basins_monthly.hts"
    Delete "$INSTDIR\examples\basins_monthly_methods.txt"
    Delete "$INSTDIR\examples\rivers_daily.hts"
    Delete "$INSTDIR\examples\rivers_daily_methods.txt"
    Delete "$INSTDIR\licenses\*.txt"
    Delete "$INSTDIR\uninstall.exe"
    ; A folder with files of the user's own stays.
    RMDir "$INSTDIR\Help"
    RMDir "$INSTDIR\examples"
    RMDir "$INSTDIR\licenses"
    RMDir "$INSTDIR"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    DeleteRegKey HKLM "Software\HtsAnnualizer"
SectionEnd
