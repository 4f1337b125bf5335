; Puts the folder of the programs on the search path, PATH, and takes it away. The value is changed in
; a buffer of its own length: a text of an installer holds 1023 characters, and a longer search path
; would be cut.
;   ${AddToSearchPath}          in a section of the installer; sets the error flag on failure
;   ${un.RemoveFromSearchPath}  in one of the uninstaller

; Texts, as they are stored, with or without references to variables.
!define RRF_TEXTS_NOEXPAND 0x10000006
!define ERROR_FILE_NOT_FOUND 2
!define REG_EXPAND_SZ 2

Var searchPathRoot
Var searchPathKey

; For all users or for this one, as $users says.
!macro ChooseSearchPath
    ${If} $users == "all"
        StrCpy $searchPathRoot 0x80000002 ; HKEY_LOCAL_MACHINE
        StrCpy $searchPathKey "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"
    ${Else}
        StrCpy $searchPathRoot 0x80000001 ; HKEY_CURRENT_USER
        StrCpy $searchPathKey "Environment"
    ${EndIf}
!macroend

; $R3 becomes a buffer with ";", the search path, and ";" if it doesn't end with one, with room for
; one more text; 0 if the search path can't be read. $R1 becomes the type of the value. $R4 becomes
; the address of the folder, after a ";", or 0.
!macro ReadSearchPath
    StrCpy $R3 0
    System::Call 'advapi32::RegGetValueW(p $searchPathRoot, w "$searchPathKey", w "Path", \
        i ${RRF_TEXTS_NOEXPAND}, *i .R1, p 0, *i .R2) i .R0'
    ${If} $R0 = ${ERROR_FILE_NOT_FOUND}
        StrCpy $R1 ${REG_EXPAND_SZ}
        StrCpy $R2 2
    ${EndIf}
    ${If} $R0 = 0
    ${OrIf} $R0 = ${ERROR_FILE_NOT_FOUND}
        IntOp $R5 $R2 + ${NSIS_MAX_STRLEN}
        IntOp $R5 $R5 + ${NSIS_MAX_STRLEN}
        System::Alloc $R5
        Pop $R3
        System::Call 'kernel32::lstrcpyW(p R3, w ";")'
        IntPtrOp $R6 $R3 + 2
        ${If} $R0 = 0
            System::Call 'advapi32::RegGetValueW(p $searchPathRoot, w "$searchPathKey", w "Path", \
                i ${RRF_TEXTS_NOEXPAND}, p 0, p R6, *i R2) i .R0'
        ${EndIf}
        System::Call 'kernel32::lstrlenW(p R3) i .R5'
        IntOp $R5 $R5 * 2
        IntPtrOp $R6 $R3 + $R5
        IntPtrOp $R6 $R6 - 2
        System::Call 'kernel32::lstrcmpW(p R6, w ";") i .R5'
        ${If} $R5 <> 0
            System::Call 'kernel32::lstrcatW(p R3, w ";")'
        ${EndIf}
        System::Call 'shlwapi::StrStrIW(p R3, w ";$INSTDIR;") p .R4'
    ${EndIf}
!macroend

; Stores what follows the first ";" of the buffer.
!macro WriteSearchPath
    IntPtrOp $R6 $R3 + 2
    System::Call 'kernel32::lstrlenW(p R6) i .R5'
    IntOp $R5 $R5 + 1
    IntOp $R5 $R5 * 2
    System::Call 'advapi32::RegSetKeyValueW(p $searchPathRoot, w "$searchPathKey", w "Path", i R1, \
        p R6, i R5) i .R0'
    SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=5000
!macroend

!macro AddToSearchPath
    !insertmacro ChooseSearchPath
    !insertmacro ReadSearchPath
    ${If} $R3 P= 0
        SetErrors
    ${Else}
        ${If} $R4 P= 0
            System::Call 'kernel32::lstrcatW(p R3, w "$INSTDIR")'
            !insertmacro WriteSearchPath
            ${If} $R0 <> 0
                SetErrors
            ${EndIf}
        ${EndIf}
        System::Free $R3
    ${EndIf}
!macroend
!define AddToSearchPath "!insertmacro AddToSearchPath"

!macro RemoveFromSearchPath
    !insertmacro ChooseSearchPath
    !insertmacro ReadSearchPath
    ${If} $R3 P<> 0
        ${If} $R4 P<> 0
            StrLen $R5 ";$INSTDIR"
            IntOp $R5 $R5 * 2
            IntPtrOp $R6 $R4 + $R5
            System::Call 'kernel32::lstrlenW(p R6) i .R5'
            IntOp $R5 $R5 + 1
            IntOp $R5 $R5 * 2
            System::Call 'kernel32::RtlMoveMemory(p R4, p R6, p R5)'
            ; Without the ";" at the end.
            System::Call 'kernel32::lstrlenW(p R3) i .R5'
            ${If} $R5 > 1
                IntOp $R5 $R5 * 2
                IntPtrOp $R6 $R3 + $R5
                IntPtrOp $R6 $R6 - 2
                System::Call 'kernel32::RtlZeroMemory(p R6, p 2)'
            ${EndIf}
            !insertmacro WriteSearchPath
        ${EndIf}
        System::Free $R3
    ${EndIf}
!macroend
!define un.RemoveFromSearchPath "!insertmacro RemoveFromSearchPath"
