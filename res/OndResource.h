/* Identifiers of the module's resources, shared by the resource script and
   the dialogs' code. Plain #defines: windres reads this file too. */
#ifndef OND_RESOURCE_H
#define OND_RESOURCE_H

/* Dialog templates. */
#define IDD_TERMINAL 4001
#define IDD_FILEMANAGER 4002
#define IDD_FILEPROPERTIES 4003
#define IDD_PROGRESS 4004
#define IDD_SCRIPTPROCESSOR 4005
#define IDD_USERINPUT 4009
#define IDD_USERLISTINPUT 4010

/* Icons. */
#define IDI_FILEMANAGER 4006
#define IDI_SCRIPTPROCESSOR 4007
#define IDI_TERMINAL 4008

/* Terminal (4001). */
#define IDC_TERM_CONFIG 4012
#define IDC_TERM_ANSWERS 4013
#define IDC_TERM_INPUT 4014
#define IDC_TERM_CLEAR 4015
#define IDC_TERM_COPY 4016
#define IDC_TERM_STATUS 4017
#define IDC_TERM_APPENDCR 4061

/* File manager (4002). */
#define IDC_FM_LOCALGROUP 4018
#define IDC_FM_DEVICEGROUP 4019
#define IDC_FM_LOCALLIST 4020
#define IDC_FM_DEVICELIST 4021
#define IDC_FM_COPYSELECTED 4022
#define IDC_FM_DELETE 4023
#define IDC_FM_REFRESH 4024
#define IDC_FM_ADDFILES 4025
#define IDC_FM_COPYALL 4026
#define IDC_FM_CONFIG 4035
#define IDC_FM_FORMAT 4037
#define IDC_FM_CLEAR 4038
#define IDC_FM_LOADJOB 4039
#define IDC_FM_SAVEJOB 4040
#define IDC_FM_SUMMARY 4041
#define IDC_FM_CONTINUE 4062

/* File properties (4003). */
#define IDC_FP_PATHLABEL 4027
#define IDC_FP_PATH 4028
#define IDC_FP_IDLABEL 4029
#define IDC_FP_ID 4030
#define IDC_FP_TYPELABEL 4031
#define IDC_FP_TYPE 4032
#define IDC_FP_MODELABEL 4033
#define IDC_FP_MODE 4034
#define IDC_FP_NOTE 4036

/* Progress (4004). */
#define IDC_PROG_FILE 4042
#define IDC_PROG_TOTAL 4043
#define IDC_PROG_COUNT 4044
#define IDC_PROG_CURRENT 4045

/* Script processor (4005). */
#define IDC_SP_BROWSE 4046
#define IDC_SP_PATH 4047
#define IDC_SP_EXECUTE 4048
#define IDC_SP_EDIT 4049
#define IDC_SP_PATHLABEL 4050
#define IDC_SP_LOG 4051
#define IDC_SP_CONFIG 4052
#define IDC_SP_LOGLABEL 4053
#define IDC_SP_NEW 4054
#define IDC_SP_COPY 4055

/* Operator questions (4009, 4010). */
#define IDC_UI_PROMPT 4057
#define IDC_UI_INPUT 4058
#define IDC_ULI_PROMPT 4059
#define IDC_ULI_LIST 4060

#endif
