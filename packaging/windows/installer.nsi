; The installer of the Windows programs.
; makensis -DVERSION=1.2.3 -DFOLDER=release-folder -DLIST=files.nsh -DOUTFILE=setup.exe installer.nsi
; LIST contains the instructions that delete the installed files, one per file.

Target amd64-unicode
SetCompressor /SOLID lzma
ManifestDPIAware true
RequestExecutionLevel admin

!include "MUI2.nsh"
!include "x64.nsh"
!include "FileFunc.nsh"

!define PRODUCT "Taksavaihe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"

Name "${PRODUCT} ${VERSION}"
OutFile "${OUTFILE}"
InstallDir "$PROGRAMFILES64\${PRODUCT}"
BrandingText "${PRODUCT} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=1035 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=1035 "FileDescription" "Taksavaiheen asennus"
VIAddVersionKey /LANG=1035 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=1035 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=1035 "LegalCopyright" "Taksavaihe"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\taksavaihe.exe"
!define MUI_FINISHPAGE_RUN_TEXT "Käynnistä Taksavaihe"
!define MUI_FINISHPAGE_RUN_NOTCHECKED
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "Finnish"

; The file of a running program cannot be opened for writing.
!macro RefuseWhileRunning PROGRAM
    ${If} ${FileExists} "$INSTDIR\${PROGRAM}"
        ClearErrors
        FileOpen $0 "$INSTDIR\${PROGRAM}" a
        ${If} ${Errors}
            SetErrorLevel 2
            MessageBox MB_OK|MB_ICONSTOP "${PROGRAM} on käynnissä tai sitä ei saa korvata. Sulje se ja yritä uudelleen." /SD IDOK
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

Function .onInit
    ${IfNot} ${RunningX64}
        MessageBox MB_OK|MB_ICONSTOP "Taksavaihe toimii vain 64-bittisessä Windowsissa." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
    SetRegView 64
    SetShellVarContext all
    ; an upgrade uses the folder of the older version, unless another one is given
    ${If} $INSTDIR == "$PROGRAMFILES64\${PRODUCT}"
        ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
        ${If} $0 != ""
            StrCpy $INSTDIR $0
        ${EndIf}
    ${EndIf}
FunctionEnd

Section
    !insertmacro RefuseWhileRunning "taksavaihe.exe"
    !insertmacro RefuseWhileRunning "zavdb.exe"

    ; The older version's uninstaller knows its files; it keeps ALVMUUTOS.INI.
    ${If} ${FileExists} "$INSTDIR\poista.exe"
        ExecWait '"$INSTDIR\poista.exe" /S /UPGRADE _?=$INSTDIR' $0
        ${If} $0 <> 0
            SetErrorLevel 2
            MessageBox MB_OK|MB_ICONSTOP "Aiemman version poisto ei onnistunut." /SD IDOK
            Quit
        ${EndIf}
    ${EndIf}

    ClearErrors
    SetOutPath "$INSTDIR"
    File /r "${FOLDER}\*"
    WriteUninstaller "$INSTDIR\poista.exe"
    ${If} ${Errors}
        SetErrorLevel 2
        MessageBox MB_OK|MB_ICONSTOP "Tiedostojen kirjoitus kansioon $INSTDIR ei onnistunut." /SD IDOK
        Quit
    ${EndIf}

    ; ALVMUUTOS.INI is next to the program and every user of the machine saves it, so users
    ; (S-1-5-32-545) may create and change files here; only administrators (S-1-5-32-544) and the
    ; system (S-1-5-18) may change the programs and libraries.
    nsExec::ExecToLog 'icacls "$INSTDIR" /grant *S-1-5-32-545:(OI)(CI)M'
    Pop $0
    nsExec::ExecToLog 'icacls "$INSTDIR\*.exe" /inheritance:r /grant:r *S-1-5-32-544:F *S-1-5-18:F *S-1-5-32-545:RX'
    Pop $0
    nsExec::ExecToLog 'icacls "$INSTDIR\*.dll" /inheritance:r /grant:r *S-1-5-32-544:F *S-1-5-18:F *S-1-5-32-545:RX'
    Pop $0
    nsExec::ExecToLog 'icacls "$INSTDIR\platforms" /inheritance:r /grant:r *S-1-5-32-544:(OI)(CI)F *S-1-5-18:(OI)(CI)F *S-1-5-32-545:(OI)(CI)RX'
    Pop $0
    nsExec::ExecToLog 'icacls "$INSTDIR\styles" /inheritance:r /grant:r *S-1-5-32-544:(OI)(CI)F *S-1-5-18:(OI)(CI)F *S-1-5-32-545:(OI)(CI)RX'
    Pop $0
    nsExec::ExecToLog 'icacls "$INSTDIR\imageformats" /inheritance:r /grant:r *S-1-5-32-544:(OI)(CI)F *S-1-5-18:(OI)(CI)F *S-1-5-32-545:(OI)(CI)RX'
    Pop $0

    CreateShortcut "$SMPROGRAMS\${PRODUCT}.lnk" "$INSTDIR\taksavaihe.exe"

    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\taksavaihe.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PRODUCT}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\poista.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\poista.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Function un.onInit
    SetRegView 64
    SetShellVarContext all
FunctionEnd

; Removes only the program's own files: users' files, companies and their registrations are kept.
Section "Uninstall"
    !insertmacro RefuseWhileRunning "taksavaihe.exe"
    !insertmacro RefuseWhileRunning "zavdb.exe"
    !include "${LIST}"
    Delete "$INSTDIR\poista.exe"
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/UPGRADE" $1
    ${If} ${Errors}
        ${If} ${FileExists} "$INSTDIR\ALVMUUTOS.INI"
            MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Poistetaanko myös eräajon määrittelyluettelo ALVMUUTOS.INI?" /SD IDNO IDNO keep
            Delete "$INSTDIR\ALVMUUTOS.INI"
            keep:
        ${EndIf}
        Delete "$SMPROGRAMS\${PRODUCT}.lnk"
        DeleteRegKey HKLM "${UNINSTALL_KEY}"
        RMDir "$INSTDIR" ; only when nothing is left in it
    ${EndIf}
SectionEnd
