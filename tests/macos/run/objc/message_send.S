// SPDX-License-Identifier: MIT
//
// objc_msgSend and its kin for the System V ABI of x86-64: find the method, then jump to
// it with every argument as it came. A message to nil answers zero.

.macro SAVE_ARGUMENTS
  push %rbp
  .cfi_def_cfa_offset 16
  .cfi_offset %rbp, -16
  mov %rsp, %rbp
  .cfi_def_cfa_register %rbp
  sub $0xc0, %rsp
  mov %rdi, 0x00(%rsp)
  mov %rsi, 0x08(%rsp)
  mov %rdx, 0x10(%rsp)
  mov %rcx, 0x18(%rsp)
  mov %r8, 0x20(%rsp)
  mov %r9, 0x28(%rsp)
  mov %rax, 0x30(%rsp)
  movups %xmm0, 0x40(%rsp)
  movups %xmm1, 0x50(%rsp)
  movups %xmm2, 0x60(%rsp)
  movups %xmm3, 0x70(%rsp)
  movups %xmm4, 0x80(%rsp)
  movups %xmm5, 0x90(%rsp)
  movups %xmm6, 0xa0(%rsp)
  movups %xmm7, 0xb0(%rsp)
.endm

.macro RESTORE_ARGUMENTS
  mov %rax, %r11
  mov 0x00(%rsp), %rdi
  mov 0x08(%rsp), %rsi
  mov 0x10(%rsp), %rdx
  mov 0x18(%rsp), %rcx
  mov 0x20(%rsp), %r8
  mov 0x28(%rsp), %r9
  mov 0x30(%rsp), %rax
  movups 0x40(%rsp), %xmm0
  movups 0x50(%rsp), %xmm1
  movups 0x60(%rsp), %xmm2
  movups 0x70(%rsp), %xmm3
  movups 0x80(%rsp), %xmm4
  movups 0x90(%rsp), %xmm5
  movups 0xa0(%rsp), %xmm6
  movups 0xb0(%rsp), %xmm7
  leave
  .cfi_def_cfa %rsp, 8
.endm

.text

// id objc_msgSend(id receiver, SEL selector, ...)
.globl objc_msgSend
.type objc_msgSend, @function
objc_msgSend:
  .cfi_startproc
  test %rdi, %rdi
  jz 1f
  SAVE_ARGUMENTS
  call standInMethodFor
  RESTORE_ARGUMENTS
  jmp *%r11
1:
  xor %eax, %eax
  xor %edx, %edx
  xorps %xmm0, %xmm0
  xorps %xmm1, %xmm1
  ret
  .cfi_endproc

// For results in memory, whose address comes first.
.globl objc_msgSend_stret
.type objc_msgSend_stret, @function
objc_msgSend_stret:
  .cfi_startproc
  SAVE_ARGUMENTS
  mov %rsi, %rdi
  mov %rdx, %rsi
  call standInMethodFor
  RESTORE_ARGUMENTS
  jmp *%r11
  .cfi_endproc

// id objc_msgSendSuper2(struct { id receiver; Class current; }* super, SEL selector, ...)
.globl objc_msgSendSuper2
.type objc_msgSendSuper2, @function
objc_msgSendSuper2:
  .cfi_startproc
  SAVE_ARGUMENTS
  call standInSuperMethodFor
  RESTORE_ARGUMENTS
  mov (%rdi), %rdi
  jmp *%r11
  .cfi_endproc

.section .note.GNU-stack, "", @progbits
