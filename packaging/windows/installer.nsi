; Installs the folder that packaging/windows/package has filled, with an entry in the Start menu and
; an uninstaller, which removes just what was installed. docs/windows.md describes its options.
;   VERSION   of the programs; VERSION4 is the same in four numbers
;   FOLDER    what is installed
;   REMOVALS  file with the macros DeleteFiles and RemoveFolders for the same in $INSTDIR
;   SIZE_KB   how much that is
;   ICON      of the installer
;   OUTPUT    the installer
;   COMPANY, COPYRIGHT  what it says of itself
Unicode true
Target amd64-unicode
!include FileFunc.nsh
!include LogicLib.nsh
!include WinMessages.nsh

Name "HtsAnnualizer ${VERSION}"
OutFile "${OUTPUT}"
Icon "${ICON}"
UninstallIcon "${ICON}"
SetCompressor /SOLID lzma
; An administrator is asked for consent; everyone else installs without rights.
RequestExecutionLevel highest
LicenseData "${FOLDER}/LICENSE.txt"
ManifestLongPathAware true

VIProductVersion "${VERSION4}"
VIAddVersionKey "ProductName" "HtsAnnualizer"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Setup of HtsAnnualizer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "${COMPANY}"
VIAddVersionKey "LegalCopyright" "${COPYRIGHT}"

!define SETTINGS_KEY "Software\HtsAnnualizer"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\HtsAnnualizer"

Var users ; for whom it is installed: "all" or "current"

!include searchpath.nsh
!include "${REMOVALS}"

Page license
Page components
Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; Ends with exit code 2, also when nobody can answer a message.
!macro Fail TEXT
    MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
    SetErrorLevel 2
    Abort "${TEXT}"
!macroend

!macro UseShellOfUsers
    ${If} $users == "all"
        SetShellVarContext all
    ${Else}
        SetShellVarContext current
    ${EndIf}
!macroend

; While a program runs, its file can neither be replaced nor deleted.
!macro RequireWritable PROGRAM
    ${If} ${FileExists} "$INSTDIR\${PROGRAM}"
        ${Do}
            ClearErrors
            FileOpen $0 "$INSTDIR\${PROGRAM}" a
            ${IfNot} ${Errors}
                FileClose $0
                ${ExitDo}
            ${EndIf}
            ${If} ${Cmd} 'MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
                "$INSTDIR\${PROGRAM} is running, or cannot be written." /SD IDCANCEL IDCANCEL'
                SetErrorLevel 2
                Abort "$INSTDIR\${PROGRAM} is running, or cannot be written."
            ${EndIf}
        ${Loop}
    ${EndIf}
!macroend

Section "Programs"
    SectionIn RO
    !insertmacro RequireWritable "HtsAnnualizer.exe"
    !insertmacro RequireWritable "htstool.exe"
    ClearErrors
    SetOutPath "$INSTDIR"
    File /r "${FOLDER}/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ; The program starts where the user's files are.
    StrCpy $OUTDIR "%USERPROFILE%\Documents"
    CreateShortcut "$SMPROGRAMS\HtsAnnualizer.lnk" "$INSTDIR\HtsAnnualizer.exe"
    StrCpy $OUTDIR "$INSTDIR"
    WriteRegStr SHCTX "${SETTINGS_KEY}" "Folder" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "HtsAnnualizer"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\HtsAnnualizer.exe"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "${COMPANY}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
    ${If} ${Errors}
        !insertmacro Fail "Not all of HtsAnnualizer could be installed in $INSTDIR."
    ${EndIf}
SectionEnd

Section /o "On the search path (PATH)" SEARCH_PATH
    ClearErrors
    ${AddToSearchPath}
    ${If} ${Errors}
        !insertmacro Fail "The search path (PATH) could not be changed."
    ${EndIf}
SectionEnd

Function .onInit
    SetRegView 64
    ${GetParameters} $R0
    StrCpy $users "all"
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != "Admin"
        StrCpy $users "current"
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/CurrentUser" $1
    ${IfNot} ${Errors}
        StrCpy $users "current"
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/AllUsers" $1
    ${IfNot} ${Errors}
    ${AndIf} $0 != "Admin"
        !insertmacro Fail "An installation for all users needs the rights of an administrator."
    ${EndIf}
    !insertmacro UseShellOfUsers
    ; An update goes where the program is; not so when the folder is given with /D=.
    ${If} $INSTDIR == ""
        ReadRegStr $INSTDIR SHCTX "${SETTINGS_KEY}" "Folder"
    ${EndIf}
    ${If} $INSTDIR == ""
    ${AndIf} $users == "all"
        StrCpy $INSTDIR "$PROGRAMFILES64\HtsAnnualizer"
    ${ElseIf} $INSTDIR == ""
        StrCpy $INSTDIR "$LOCALAPPDATA\Programs\HtsAnnualizer"
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/AddToPath" $1
    ${IfNot} ${Errors}
        SectionSetFlags ${SEARCH_PATH} 1 ; selected
    ${EndIf}
FunctionEnd

; For whom it was installed is where the folder is noted.
Function un.onInit
    SetRegView 64
    ReadRegStr $0 HKCU "${SETTINGS_KEY}" "Folder"
    StrCpy $users "all"
    ${If} $0 == $INSTDIR
        StrCpy $users "current"
    ${EndIf}
    !insertmacro UseShellOfUsers
FunctionEnd

Section "Uninstall"
    !insertmacro RequireWritable "HtsAnnualizer.exe"
    !insertmacro RequireWritable "htstool.exe"
    ClearErrors
    Delete "$SMPROGRAMS\HtsAnnualizer.lnk"
    !insertmacro DeleteFiles
    ${If} ${Errors}
        !insertmacro Fail "Not all of HtsAnnualizer could be removed from $INSTDIR."
    ${EndIf}
    ${un.RemoveFromSearchPath}
    Delete "$INSTDIR\uninstall.exe"
    ; A folder with files of the user's own stays.
    !insertmacro RemoveFolders
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
    DeleteRegKey SHCTX "${SETTINGS_KEY}"
SectionEnd
